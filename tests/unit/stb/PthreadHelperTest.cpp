#include "stb/inc/private/pthread_helper.h"
#include "tests/unit/stb/ChildProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include <fcntl.h>
#include <linux/futex.h>
#include <pthread.h>
#include <unistd.h>

namespace {

const std::string kRule = std::string(88, '=') + "\n";

// What a failed check leaves on stdout: the last rule comes after the kill and is never reached.
std::string report(const std::string& conditionAndResult, int line, const void* object) {
    char place[128] = "";
    std::snprintf(place, sizeof place, " on inc/private/pthread_helper:%d, this:%p\n", line,
                  object);
    return kRule + " ASSERT " + conditionAndResult + place + kRule + kRule;
}

void expectReport(const ChildResult& child, const std::string& conditionAndResult, int line,
                  const void* object) {
    EXPECT_TRUE(child.wasKilledBy(SIGKILL));
    EXPECT_EQ(child.out, report(conditionAndResult, line, object));
}

struct Target {
    void body() { ++runs; }
    int runs = 0;
};

// An error-checking mutex whose owner died: locking it neither succeeds nor answers EDEADLK.
void abandon(pthread_mutex_t* native) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutex_init(native, &attributes);
    pthread_mutexattr_destroy(&attributes);
    std::thread([native] { pthread_mutex_lock(native); }).join();
    // The kernel has left this mark; an emulator that knows no robust mutexes (set_robust_list) has
    // not.
    native->__data.__lock = FUTEX_OWNER_DIED;
}

}  // namespace

// Named in the back-trace, so visible to the dynamic linker; the output after the lock keeps the
// compiler from replacing this frame by the callee's.
__attribute__((noinline)) void lockTwiceForTheBackTrace(pthread_helper::mutex& mutex) {
    mutex.lock();
    mutex.lock();
    std::puts("survived");
}

TEST(PthreadHelperTest, LockingAMutexTwiceKillsTheProcessWithAReportAndABackTrace) {
    pthread_helper::mutex mutex;
    const ChildResult child = runInChild([&] { lockTwiceForTheBackTrace(mutex); });
    expectReport(child, "(res != 35) ret=35", 179, &mutex);
    EXPECT_NE(child.err.find("lockTwiceForTheBackTrace"), std::string::npos) << child.err;
    EXPECT_NE(child.err.find("pthread_helper"), std::string::npos) << child.err;
    EXPECT_EQ(child.err.back(), '\n');
}

TEST(PthreadHelperTest, DestroyingALockedMutexKillsTheProcessWithAReport) {
    auto mutex = std::make_unique<pthread_helper::mutex>();
    const void* const address = mutex.get();
    const ChildResult child = runInChild([&] {
        mutex->lock();
        mutex.reset();
    });
    expectReport(child, "(res != 16) ret=16", 164, address);
}

TEST(PthreadHelperTest, AnyOtherLockFailureKillsTheProcessWithAReport) {
    pthread_mutex_t native;
    const ChildResult child = runInChild([&] {
        abandon(&native);
        const pthread_helper::scoped_lock guard(&native);
    });
    expectReport(child, "(res == 0) ret=130", 180, &native);
}

TEST(PthreadHelperTest, AWaitUntilANonsensicalTimeKillsTheProcessWithAReport) {
    pthread_helper::mutex mutex;
    pthread_helper::condition condition;
    const ChildResult child = runInChild([&] {
        const pthread_helper::scoped_lock guard(mutex);
        timespec deadline{};
        deadline.tv_nsec = -1;
        condition.waitUntil(mutex, deadline);
    });
    expectReport(child, "(res == 0 || res == 110) ret=22", 271, &condition);
}

TEST(PthreadHelperTest, AFailingJoinIsReportedUnderTheThreadCheck) {
    Target target;
    pthread_helper::thread<Target> record(&target, &Target::body);
    const ChildResult child = runInChild([&] {
        record.id = pthread_self();
        record.join();
    });
    expectReport(child, "(res == 0) ret=35", 304, &record);
}

TEST(PthreadHelperTest, AReportReachesAPipeCompletely) {
    int object = 0;
    const ChildResult child = runInChild([&] {
        std::fputs("buffered before\n", stdout);
        pthread_helper::fail({"res == 0", 304}, 11, &object);
    });
    EXPECT_TRUE(child.wasKilledBy(SIGKILL));
    EXPECT_EQ(child.out, "buffered before\n" + report("(res == 0) ret=11", 304, &object));
}

TEST(PthreadHelperTest, TheProcessEndsWhenNobodyReadsTheReport) {
    const ChildResult child = runInChild([] {
        int ends[2];
        if (pipe(ends) != 0) return;
        fcntl(ends[1], F_SETFL, O_NONBLOCK);
        while (write(ends[1], "full", 4) > 0) {
        }
        fcntl(ends[1], F_SETFL, 0);
        dup2(ends[1], STDOUT_FILENO);
        pthread_helper::fail({"res == 0", 304}, 11, nullptr);
    });
    EXPECT_TRUE(child.wasKilledBy(SIGKILL));
}

TEST(PthreadHelperTest, UnlockingAMutexThatTheCallerDoesNotHoldIsAcceptedAndLeavesItLocked) {
    pthread_helper::mutex mutex;
    mutex.unlock();
    mutex.lock();
    std::thread([&] {
        mutex.unlock();
        EXPECT_EQ(pthread_mutex_trylock(mutex.native()), EBUSY);
    }).join();
    mutex.unlock();
    mutex.unlock();
}

TEST(PthreadHelperTest, AScopedLockReleasesOnEveryWayOut) {
    pthread_helper::mutex mutex;
    EXPECT_THROW(
        {
            const pthread_helper::scoped_lock guard(mutex);
            throw std::runtime_error("out");
        },
        std::runtime_error);
    const pthread_helper::scoped_lock guard(mutex.native());
}

TEST(PthreadHelperTest, AScopedLockKeepsOthersOut) {
    pthread_helper::mutex mutex;
    int counter = 0;
    const auto count = [&] {
        for (int i = 0; i < 1000; ++i) {
            const pthread_helper::scoped_lock guard(mutex);
            ++counter;
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 2000);
}

TEST(PthreadHelperTest, AWaitEndsAtItsDeadline) {
    pthread_helper::mutex mutex;
    pthread_helper::condition condition;
    const pthread_helper::scoped_lock guard(mutex);
    condition.waitUntil(mutex, timespec{});
}

TEST(PthreadHelperTest, AThreadRecordRunsTheOperationAndRemembersTheJoin) {
    Target target;
    pthread_helper::thread<Target> record(&target, &Target::body);
    EXPECT_FALSE(record.joined);
    record.create();
    record.join();
    EXPECT_TRUE(record.joined);
    EXPECT_EQ(target.runs, 1);
    EXPECT_EQ(pthread_helper::thread<Target>::thread_callback(&record), nullptr);
    EXPECT_EQ(target.runs, 2);
}
