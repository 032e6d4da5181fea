#include "bench/cycle/Probes.h"

#include <cstddef>

#include <pthread.h>
#include <spawn.h>
#include <sys/wait.h>

// The linker's --wrap sends the calls of the daemon's own code here and gives the real ones another
// name; both names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __real_pthread_mutex_unlock(pthread_mutex_t* mutex);
int __real_posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* files,
                       const posix_spawnattr_t* attributes, char* const arguments[],
                       char* const environment[]);
pid_t __real_waitpid(pid_t process, int* status, int options);
char* __real__ZN2TR7getLogsERm(std::size_t& length);

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex);
int __wrap_pthread_mutex_unlock(pthread_mutex_t* mutex);
int __wrap_posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* files,
                       const posix_spawnattr_t* attributes, char* const arguments[],
                       char* const environment[]);
pid_t __wrap_waitpid(pid_t process, int* status, int options);
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

int __wrap_posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* files,
                       const posix_spawnattr_t* attributes, char* const arguments[],
                       char* const environment[]) {
    commandSince = Clock::now();
    return __real_posix_spawn(process, path, files, attributes, arguments, environment);
}

pid_t __wrap_waitpid(pid_t process, int* status, int options) {
    const pid_t result = __real_waitpid(process, status, options);
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
