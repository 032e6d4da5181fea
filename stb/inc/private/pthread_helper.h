#pragma once

#include "stb/inc/private/ThreadAnnotations.h"

#include <ctime>

#include <pthread.h>

/// Checked POSIX threads. No call here reports an error: a failing one means that the program's own
/// locking is broken, and going on would corrupt the parameter store. The process then prints an
/// assertion report with a back-trace and kills itself.
namespace pthread_helper {

/// One verified condition. Its text and line are fixed names: they do not follow the source when it
/// moves.
struct Check {
    const char* condition;
    int line;
    int accepted = 0;  ///< the one result besides 0 that is not a failure
};

/// Prints the assertion report (stdout; the back-trace goes to stderr) and kills the process, two
/// seconds later at the latest when nobody reads the report, and its running commands. `object` is
/// the mutex, condition variable or thread record concerned.
[[noreturn]] void fail(const Check& check, int result, const void* object);

/// The checked operations on a bare error-checking mutex. unlock() accepts EPERM, see mutex.
void lock(pthread_mutex_t* native);
void unlock(pthread_mutex_t* native);

/// One error-checking POSIX mutex. Locking it twice from one thread is fatal instead of a silent
/// hang; so is destroying it while it is locked. Unlocking it without holding it is accepted:
/// STBThread::stop() relies on that.
class KELM_CAPABILITY("mutex") mutex {
  public:
    mutex();
    ~mutex();
    mutex(const mutex&) = delete;
    mutex& operator=(const mutex&) = delete;

    // The POSIX calls underneath are not known to the analysis.
    void lock() KELM_ACQUIRE() KELM_NO_ANALYSIS { pthread_helper::lock(&native_); }
    void unlock() KELM_RELEASE() KELM_NO_ANALYSIS { pthread_helper::unlock(&native_); }
    pthread_mutex_t* native() { return &native_; }

  private:
    pthread_mutex_t native_;
};

/// Holds a mutex for the life of a block. Borrows the mutex, which must outlive it.
class KELM_SCOPED_CAPABILITY scoped_lock {
  public:
    explicit scoped_lock(mutex& guarded) KELM_ACQUIRE(guarded) KELM_NO_ANALYSIS
        : scoped_lock(guarded.native()) {}
    explicit scoped_lock(pthread_mutex_t* native) : native_(native) { lock(native_); }
    ~scoped_lock() KELM_RELEASE() KELM_NO_ANALYSIS { unlock(native_); }
    scoped_lock(const scoped_lock&) = delete;
    scoped_lock& operator=(const scoped_lock&) = delete;

  private:
    pthread_mutex_t* const native_;
};

/// A condition variable on the wall clock. Waiters hold the mutex that they pass; broadcast() needs
/// none. It must not be destroyed while a thread waits.
class condition {
  public:
    condition();
    ~condition();
    condition(const condition&) = delete;
    condition& operator=(const condition&) = delete;

    /// Returns at the absolute time `deadline`, on a broadcast, or early (a spurious wake-up).
    void waitUntil(mutex& held, const timespec& deadline) KELM_REQUIRES(held);
    void broadcast();

  private:
    pthread_cond_t native_;
};

/// pthread_create() and pthread_join(), checked; `record` is the object named in the report.
void createThread(pthread_t* id, void* (*routine)(void*), void* record);
void joinThread(pthread_t id, const void* record);

/// What a new thread needs to know. The thread reads target and operation when it starts, so the
/// record must stay where it is until the thread has been joined; the starter owns it.
template <typename T>
struct thread {
    using Operation = void (T::*)();

    thread(T* threadTarget, Operation threadOperation)
        : target(threadTarget), operation(threadOperation) {}

    void create() { createThread(&id, &thread::thread_callback, this); }

    void join() {
        joinThread(id, this);
        joined = true;
    }

    static void* thread_callback(void* record) {
        const auto* self = static_cast<thread*>(record);
        (self->target->*self->operation)();
        return nullptr;
    }

    T* target;
    Operation operation;
    pthread_t id{};
    bool joined = false;
};

}  // namespace pthread_helper
