#pragma once

/// Which lock guards what, in a form that clang checks (scripts/lint); nothing for other compilers.
/// https://clang.llvm.org/docs/ThreadSafetyAnalysis.html
#ifdef __clang__
#define KELM_THREAD_ANNOTATION(text) __attribute__((text))
#else
#define KELM_THREAD_ANNOTATION(text)
#endif

#define KELM_CAPABILITY(name) KELM_THREAD_ANNOTATION(capability(name))
#define KELM_SCOPED_CAPABILITY KELM_THREAD_ANNOTATION(scoped_lockable)
#define KELM_ACQUIRE(...) KELM_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define KELM_RELEASE(...) KELM_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
/// The member is touched only while the mutex is held.
#define KELM_GUARDED_BY(mutex) KELM_THREAD_ANNOTATION(guarded_by(mutex))
/// The caller holds the mutex.
#define KELM_REQUIRES(...) KELM_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
/// The operation hands this mutex out.
#define KELM_RETURN_CAPABILITY(mutex) KELM_THREAD_ANNOTATION(lock_returned(mutex))
/// Not analysed; a comment gives the reason.
#define KELM_NO_ANALYSIS KELM_THREAD_ANNOTATION(no_thread_safety_analysis)
