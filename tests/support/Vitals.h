#pragma once

#include <cstddef>
#include <iosfwd>
#include <vector>

#include <sys/types.h>

/// A sanitizer keeps what was freed, and its shadow memory is far beyond any limit.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

/// What a process holds of the system, as /proc shows it; all 0 when it has ended.
struct Vitals {
    std::size_t threads = 0;
    std::size_t descriptors = 0;
    std::size_t children = 0;
    std::size_t residentKiB = 0;

    /// No thread and no descriptor more, and no child; \p before may have been taken while a
    /// command ran.
    bool holdsNoMoreThan(const Vitals& before) const {
        return threads <= before.threads && descriptors <= before.descriptors && children == 0;
    }
};
Vitals vitalsOf(pid_t pid);
/// The most memory that it has had resident so far.
std::size_t peakKiBOf(pid_t pid);
/// The same at rest: without what it holds for a moment only, a command's pipe or a file that it
/// reads.
Vitals quietVitalsOf(pid_t pid);
std::ostream& operator<<(std::ostream& stream, const Vitals& vitals);

/// Its children, their children and so on.
std::vector<pid_t> descendantsOf(pid_t pid);

/// All processes of the box.
std::size_t processCount();
