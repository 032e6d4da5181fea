// Preloaded into the daemon by tests, for faults that a box cannot have by itself because it shares
// the host's kernel. Files beneath /run/kelm-box/shim switch them on and off while the daemon runs:
//
//   clock           seconds by which the wall clock is off; a change is a step
//   no-interfaces   getifaddrs() fails
//   no-processes    no process and no thread can be started
//
// Built without sanitizers; the commands that the daemon runs inherit it and are not harmed.

#include <cerrno>
#include <cstdlib>
#include <ctime>

#include <dlfcn.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/time.h>
#include <unistd.h>

// On 32 bits the wide times have separate functions, and the headers give these definitions their
// names.
#if defined(__TIMESIZE) && defined(_TIME_BITS) && __TIMESIZE == 32 && _TIME_BITS == 64
#define KELM_REAL_NAME(name, wide) wide
#else
#define KELM_REAL_NAME(name, wide) name
#endif

namespace {

// The next one in the order of loading: a sanitizer's, or the C library's newest.
template <typename Function>
Function real(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

bool isSet(const char* file) {
    return access(file, F_OK) == 0;
}

long long clockOffset() {
    const int descriptor = open("/run/kelm-box/shim/clock", O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return 0;
    char text[32] = "";
    const ssize_t count = read(descriptor, text, sizeof text - 1);
    close(descriptor);
    return count > 0 ? std::atoll(text) : 0;
}

bool noProcesses() {
    return isSet("/run/kelm-box/shim/no-processes");
}

timespec realNow() {
    static const auto clock =
        real<int (*)(clockid_t, timespec*)>(KELM_REAL_NAME("clock_gettime", "__clock_gettime64"));
    timespec now{};
    clock(CLOCK_REALTIME, &now);
    return now;
}

bool isBefore(const timespec& a, const timespec& b) {
    return a.tv_sec < b.tv_sec || (a.tv_sec == b.tv_sec && a.tv_nsec < b.tv_nsec);
}

timespec shifted(timespec time, long long seconds) {
    time.tv_sec += static_cast<time_t>(seconds);
    return time;
}

timespec soon() {
    constexpr int kSlice = 20'000'000;
    timespec time = realNow();
    time.tv_nsec += kSlice;
    if (time.tv_nsec < 1'000'000'000) return time;
    time.tv_nsec -= 1'000'000'000;
    ++time.tv_sec;
    return time;
}

}  // namespace

// With KELM_SHIM_LEAK in the environment memory is leaked for a leak checker to find.
__attribute__((constructor)) static void leak() {
    if (std::getenv("KELM_SHIM_LEAK") == nullptr) return;
    for (int i = 0; i < 10; ++i) {
        void* volatile lost = std::malloc(4321);
        lost = nullptr;
        static_cast<void>(lost);
    }
}

extern "C" {

int gettimeofday(timeval* time, void*) noexcept {
    const timespec now = shifted(realNow(), clockOffset());
    time->tv_sec = now.tv_sec;
    time->tv_usec = static_cast<decltype(time->tv_usec)>(now.tv_nsec / 1000);
    return 0;
}

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    static const auto realClock =
        real<int (*)(clockid_t, timespec*)>(KELM_REAL_NAME("clock_gettime", "__clock_gettime64"));
    const int result = realClock(clock, time);
    if (result == 0 && clock == CLOCK_REALTIME) *time = shifted(*time, clockOffset());
    return result;
}

time_t time(time_t* result) noexcept {
    const time_t now = shifted(realNow(), clockOffset()).tv_sec;
    if (result != nullptr) *result = now;
    return now;
}

// In slices, as the clock may be stepped during the wait. Between two slices a broadcast that comes
// without the mutex can be missed, just as one that comes before the wait.
int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* end) {
    static const auto wait = real<int (*)(pthread_cond_t*, pthread_mutex_t*, const timespec*)>(
        KELM_REAL_NAME("pthread_cond_timedwait", "__pthread_cond_timedwait64"));
    while (true) {
        const timespec realEnd = shifted(*end, -clockOffset());
        const timespec slice = soon();
        const bool isLast = !isBefore(slice, realEnd);
        const int result = wait(condition, mutex, isLast ? &realEnd : &slice);
        if (result != ETIMEDOUT) return result;
        if (isLast && !isBefore(realNow(), shifted(*end, -clockOffset()))) return ETIMEDOUT;
    }
}

int getifaddrs(ifaddrs** list) noexcept {
    static const auto realList = real<int (*)(ifaddrs**)>("getifaddrs");
    if (!isSet("/run/kelm-box/shim/no-interfaces")) return realList(list);
    errno = ENOBUFS;
    return -1;
}

int posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* files,
                const posix_spawnattr_t* attributes, char* const arguments[],
                char* const environment[]) noexcept {
    static const auto spawn = real<decltype(&posix_spawn)>("posix_spawn");
    return noProcesses() ? EAGAIN : spawn(process, path, files, attributes, arguments, environment);
}

int pthread_create(pthread_t* id, const pthread_attr_t* attributes, void* (*routine)(void*),
                   void* argument) noexcept {
    static const auto create =
        real<int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create");
    return noProcesses() ? EAGAIN : create(id, attributes, routine, argument);
}

}  // extern "C"
