#include "daemon/Process.h"

#include <csignal>
#include <ctime>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

namespace TR::Process {

namespace {

constexpr int kOwnMappingBytes = 1 << 20;
constexpr int kKeptHeapBytes = 4 << 20;

sigset_t interruptOnly() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    return set;
}

// The next file opened would take a closed descriptor's number and could receive standard error.
void openStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0)
            open("/dev/null", O_RDWR);  // NOLINT(android-cloexec-open): commands may have it
}

// waitpid() needs SIGCHLD at its default: when it is ignored, a child's status and number are gone
// before the wait.
void setUpSignals() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);
    const sigset_t set = interruptOnly();
    pthread_sigmask(SIG_SETMASK, &set, nullptr);
}

// The system log is allocated and freed in blocks of megabytes. By default the C library takes such
// blocks from the heap once one has been freed, and they leave holes there. The memory of a long
// list is kept for the next one, because fetching it again costs more than the list.
void setUpHeap() {
#ifdef M_MMAP_THRESHOLD
    // Before any thread is started; NOLINTNEXTLINE(concurrency-mt-unsafe)
    mallopt(M_MMAP_THRESHOLD, kOwnMappingBytes);
    mallopt(M_TRIM_THRESHOLD, kKeptHeapBytes);  // NOLINT(concurrency-mt-unsafe)
#endif
}

}  // namespace

void setUp() {
    openStandardDescriptors();
    setUpSignals();
    setUpHeap();
}

bool waitForInterrupt(std::chrono::seconds limit) {
    const sigset_t set = interruptOnly();
    timespec timeout{};
    timeout.tv_sec = static_cast<time_t>(limit.count());
    return sigtimedwait(&set, nullptr, &timeout) == SIGINT;
}

void letInterruptThrough() {
    const sigset_t set = interruptOnly();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

}  // namespace TR::Process
