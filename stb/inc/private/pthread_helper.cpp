#include "stb/inc/private/pthread_helper.h"

#include "stb/src/common/Commands.h"
#include "stb/src/common/STBBackTrace.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace pthread_helper {
namespace {

constexpr Check kMutexCreated{"res == 0", 160};
constexpr Check kMutexNotBusy{"res != 16", 164};
constexpr Check kMutexDestroyed{"res == 0", 165};
constexpr Check kMutexNotOwned{"res != 35", 179};
constexpr Check kMutexLocked{"res == 0", 180};
constexpr Check kMutexUnlocked{"res == 0", 196, EPERM};
constexpr Check kConditionCreated{"res == 0", 231};
constexpr Check kConditionDestroyed{"res == 0", 235};
constexpr Check kConditionWaited{"res == 0 || res == 110", 271, ETIMEDOUT};
constexpr Check kConditionBroadcast{"res == 0", 283};
// A failing join is reported under this name too: both mean that a thread cannot be managed.
constexpr Check kThreadStarted{"res == 0", 304};

static_assert(EBUSY == 16 && EDEADLK == 35 && ETIMEDOUT == 110 && EPERM == 1,
              "the conditions' texts spell these numbers out");

constexpr int kReportSeconds = 2;
constexpr const char* kSource = "inc/private/pthread_helper";
constexpr const char* kRule =
    "========================================================================================\n";

inline void verify(int result, const Check& check, const void* object) {
    if (result != 0 && result != check.accepted) fail(check, result, object);
}

// A stalled reader of the report delays the printing, not the end of the process.
void killItselfLater() {
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGKILL;
    timer_t timer{};
    itimerspec time{};
    time.it_value.tv_sec = kReportSeconds;
    if (timer_create(CLOCK_MONOTONIC, &event, &timer) == 0) timer_settime(timer, 0, &time, nullptr);
}

}  // namespace

void fail(const Check& check, int result, const void* object) {
    TR::Utils::killRunningCommands();
    killItselfLater();
    std::fputs(kRule, stdout);
    std::printf(" ASSERT (%s) ret=%d on %s:%d, this:%p\n", check.condition, result, kSource,
                check.line, object);
    std::fputs(kRule, stdout);
    // Nothing flushes a pipe or a log file after SIGKILL, and the order with stderr matters.
    std::fflush(stdout);
    STBBackTrace::print(stderr);
    std::fputs(kRule, stdout);
    std::fflush(stdout);
    kill(getpid(), SIGKILL);
    std::fputs(kRule, stdout);
    // Only the first process of a PID namespace survives its own SIGKILL.
    std::abort();
}

void lock(pthread_mutex_t* native) {
    const int result = pthread_mutex_lock(native);
    verify(result, result == EDEADLK ? kMutexNotOwned : kMutexLocked, native);
}

void unlock(pthread_mutex_t* native) {
    verify(pthread_mutex_unlock(native), kMutexUnlocked, native);
}

mutex::mutex() {
    pthread_mutexattr_t attributes;
    // Neither can fail with these arguments.
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    verify(pthread_mutex_init(&native_, &attributes), kMutexCreated, this);
    pthread_mutexattr_destroy(&attributes);
}

mutex::~mutex() {
    const int result = pthread_mutex_destroy(&native_);
    verify(result, result == EBUSY ? kMutexNotBusy : kMutexDestroyed, this);
}

condition::condition() {
    verify(pthread_cond_init(&native_, nullptr), kConditionCreated, this);
}

condition::~condition() {
    verify(pthread_cond_destroy(&native_), kConditionDestroyed, this);
}

void condition::waitUntil(mutex& held, const timespec& deadline) {
    const int result = pthread_cond_timedwait(&native_, held.native(), &deadline);
    verify(result, kConditionWaited, this);
}

void condition::broadcast() {
    verify(pthread_cond_broadcast(&native_), kConditionBroadcast, this);
}

void createThread(pthread_t* id, void* (*routine)(void*), void* record) {
    verify(pthread_create(id, nullptr, routine, record), kThreadStarted, record);
}

void joinThread(pthread_t id, const void* record) {
    verify(pthread_join(id, nullptr), kThreadStarted, record);
}

}  // namespace pthread_helper
