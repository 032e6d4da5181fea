#include "bench/cycle/Probes.h"

#include <cstddef>
#include <cstdio>

#include <pthread.h>

// The linker's --wrap sends the calls of the daemon's own code here and gives the real ones another
// name; both names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);
FILE* __real_popen(const char* command, const char* mode);
int __real_pclose(FILE* pipe);
char* __real__ZN2TR7getLogsERm(std::size_t& length);

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex);
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex);
FILE* __wrap_popen(const char* command, const char* mode);
int __wrap_pclose(FILE* pipe);
char* __wrap__ZN2TR7getLogsERm(std::size_t& length);
}

namespace bench {

Probes& probes() {
    static Probes instance;
    return instance;
}

}  // namespace bench

namespace {

using Clock = std::chrono::steady_clock;

int locksHeld = 0;
Clock::time_point lockedSince;
Clock::time_point commandSince;

void addIfLocked(std::chrono::nanoseconds& total, Clock::time_point since) {
    if (locksHeld > 0) total += Clock::now() - since;
}

}  // namespace

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
    const int result = __real_pthread_mutex_lock(mutex);
    if (locksHeld++ == 0) lockedSince = Clock::now();
    return result;
}

int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex) {
    if (--locksHeld == 0) bench::probes().locked += Clock::now() - lockedSince;
    return __real_pthread_mutex_unlock(mutex);
}

FILE* __wrap_popen(const char* command, const char* mode) {
    commandSince = Clock::now();
    return __real_popen(command, mode);
}

int __wrap_pclose(FILE* pipe) {
    const int result = __real_pclose(pipe);
    addIfLocked(bench::probes().commands, commandSince);
    return result;
}

char* __wrap__ZN2TR7getLogsERm(std::size_t& length) {
    const Clock::time_point since = Clock::now();
    char* const text = __real__ZN2TR7getLogsERm(length);
    addIfLocked(bench::probes().logs, since);
    return text;
}
// NOLINTEND(bugprone-reserved-identifier)
