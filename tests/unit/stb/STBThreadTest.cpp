#include "stb/src/common/STBThread.h"
#include "tests/unit/stb/ChildProcess.h"
#include "tests/unit/stb/Event.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr unsigned kAnHourMs = 60 * 60 * 1000;

class BodyThread : public STBThread {
  public:
    using Body = std::function<void(BodyThread&)>;

    explicit BodyThread(Body body) : body_(std::move(body)) {}
    ~BodyThread() override { shutdown(); }

    void run() override { body_(*this); }
    using STBThread::shutdown;

  private:
    const Body body_;
};

class Listener : public STBThread::OnThreadCompletedListener {
  public:
    void onThreadCompleted(STBThread* thread) override {
        finished = thread;
        onThread = std::this_thread::get_id();
        ++calls;
        called.set();
    }

    STBThread* finished = nullptr;
    std::thread::id onThread;
    int calls = 0;
    Event called;
};

void sleepUntilStopped(BodyThread& thread) {
    while (thread.isRunning()) thread.sleepMs(kAnHourMs);
}

void returnAtOnce(BodyThread&) {}

// How often the child has logged that of the thread, as an error.
std::size_t timesLogged(const ChildResult& child, const STBThread& thread,
                        const std::string& report) {
    char address[32] = "";
    std::snprintf(address, sizeof address, "%p", static_cast<const void*>(&thread));
    const std::string line =
        std::string(" ERROR [STBThread] Thread ") + address + ' ' + report + '\n';
    std::size_t found = 0;
    for (auto at = child.err.find(line); at != std::string::npos; at = child.err.find(line, at + 1))
        ++found;
    return found;
}

int niceOfThisThread() {
    return getpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)));
}

}  // namespace

TEST(STBThreadTest, AFinishedBodyStillCountsAsRunningUntilStop) {
    Listener listener;
    BodyThread thread(returnAtOnce);
    EXPECT_FALSE(thread.isRunning());
    EXPECT_FALSE(thread.hasCompleted());
    thread.start(&listener);
    ASSERT_TRUE(listener.called.wait());
    EXPECT_TRUE(thread.isRunning());
    EXPECT_TRUE(thread.hasCompleted());
    thread.stop();
    EXPECT_FALSE(thread.isRunning());
    EXPECT_TRUE(thread.hasCompleted());
}

TEST(STBThreadTest, TheListenerIsCalledOnTheFinishedThread) {
    Listener listener;
    std::thread::id id;
    BodyThread thread([&](BodyThread&) { id = std::this_thread::get_id(); });
    thread.startThread(&listener);
    ASSERT_TRUE(listener.called.wait());
    thread.stopThread();
    EXPECT_EQ(listener.finished, &thread);
    EXPECT_EQ(listener.onThread, id);
    EXPECT_NE(listener.onThread, std::this_thread::get_id());
    EXPECT_EQ(listener.calls, 1);
}

TEST(STBThreadTest, StopEndsALongSleepAtOnce) {
    Event entered;
    BodyThread thread([&](BodyThread& self) {
        entered.set();
        sleepUntilStopped(self);
    });
    thread.start();
    ASSERT_TRUE(entered.wait());
    mustFinish([&] { thread.stop(); });
    EXPECT_TRUE(thread.hasCompleted());
}

TEST(STBThreadTest, StopReturnsOnlyAfterTheBodyHasLeft) {
    std::atomic<bool> left{false};
    Event mayLeave;
    BodyThread thread([&](BodyThread& self) {
        sleepUntilStopped(self);
        mayLeave.wait();
        left = true;
    });
    thread.start();
    std::thread stopper([&] {
        thread.stop();
        EXPECT_TRUE(left);
    });
    mayLeave.set();
    stopper.join();
}

TEST(STBThreadTest, StartAfterStopOrShutdownRunsTheBodyAgain) {
    std::atomic<int> runs{0};
    BodyThread thread([&](BodyThread& self) {
        ++runs;
        sleepUntilStopped(self);
    });
    for (int round = 1; round <= 4; ++round) {
        thread.start();
        EXPECT_TRUE(thread.isRunning());
        if (round < 3) {
            thread.stop();
        } else {
            thread.shutdown();
            thread.shutdown();  // may be repeated
        }
        EXPECT_FALSE(thread.isRunning());
        EXPECT_EQ(runs, round);
    }
}

TEST(STBThreadTest, StartForgetsTheLastCompletion) {
    Event first;
    Event second;
    Event* mayLeave = &first;
    BodyThread thread([&](BodyThread&) { mayLeave->wait(); });
    first.set();
    thread.start();
    thread.stop();
    ASSERT_TRUE(thread.hasCompleted());

    mayLeave = &second;
    thread.start();
    EXPECT_FALSE(thread.hasCompleted());
    second.set();
    thread.stop();
    EXPECT_TRUE(thread.hasCompleted());
}

TEST(STBThreadTest, ASecondStartIsLoggedAndReplacesTheListenerButNotTheThread) {
    std::atomic<int> runs{0};
    BodyThread thread([&](BodyThread& self) {
        ++runs;
        sleepUntilStopped(self);
    });
    const ChildResult child = runInChild([&] {
        Listener first;
        Listener second;
        thread.start(&first);
        thread.start(&second);
        thread.stop();
        std::printf("%d runs, %d %d", runs.load(), first.calls, second.calls);
    });
    EXPECT_TRUE(child.exitedWith(0));
    EXPECT_EQ(child.out, "1 runs, 0 1");
    EXPECT_EQ(timesLogged(child, thread, "already running"), 1U) << child.err;
}

TEST(STBThreadTest, StoppingAStoppedThreadLogs) {
    BodyThread thread(sleepUntilStopped);
    const ChildResult child = runInChild([&] {
        thread.stop();
        thread.start();
        thread.stop();
        thread.stopThread();
    });
    EXPECT_TRUE(child.exitedWith(0));
    EXPECT_EQ(timesLogged(child, thread, "already stopped"), 2U) << child.err;
}

TEST(STBThreadTest, TheSleepMutexIsUsableAfterItsDoubleRelease) {
    BodyThread thread(sleepUntilStopped);
    for (int round = 0; round < 20; ++round) {
        thread.start();
        thread.stop();
        thread.sleepMs(kAnHourMs);
    }
}

TEST(STBThreadTest, ManyStoppersJoinOnce) {
    BodyThread thread(sleepUntilStopped);
    const ChildResult child = runInChild([&] {
        thread.start();
        std::thread other([&] { thread.stop(); });
        thread.stop();
        other.join();
    });
    EXPECT_TRUE(child.exitedWith(0)) << child.out;
    EXPECT_EQ(timesLogged(child, thread, "already stopped"), 1U);
}

TEST(STBThreadTest, SleepingOnAnObjectThatIsNotRunningReturnsAtOnce) {
    BodyThread thread(returnAtOnce);
    mustFinish([&] {
        thread.sleepMs(kAnHourMs);
        thread.threadSleepMs(~0U);
    });
}

TEST(STBThreadTest, AShortSleepEndsByItself) {
    Event woke;
    BodyThread thread([&](BodyThread& self) {
        self.threadSleepMs(1);
        self.sleepMs(0);
        woke.set();
    });
    thread.start();
    EXPECT_TRUE(woke.wait());
    thread.stop();
}

TEST(STBThreadTest, NotifyWakesASleeper) {
    Event woke;
    BodyThread thread([&](BodyThread& self) {
        self.sleepMs(kAnHourMs);
        woke.set();
    });
    thread.start();
    // A notification before the sleep has begun is lost, so repeat it.
    bool awake = false;
    for (int tries = 0; tries < 60000 && !awake; ++tries) {
        thread.notify();
        awake = woke.wait(std::chrono::milliseconds(1));
    }
    EXPECT_TRUE(awake);
    thread.stop();
}

TEST(STBThreadTest, AnExceptionEndsOnlyItsThreadAndIsLogged) {
    const std::pair<BodyThread::Body, const char*> rows[] = {
        {[](BodyThread&) { throw std::runtime_error("no such tuner"); },
         "ended by an exception: no such tuner"},
        {[](BodyThread&) { throw 42; }, "ended by an unknown exception"},
    };
    for (const auto& [body, report] : rows) {
        BodyThread thread(body);
        const ChildResult child = runInChild([&] {
            Listener listener;
            thread.start(&listener);
            listener.called.wait();
            std::printf("running %d completed %d", thread.isRunning(), thread.hasCompleted());
            thread.stop();
            std::printf(" calls %d", listener.calls);
        });
        EXPECT_TRUE(child.exitedWith(0));
        EXPECT_EQ(child.out, "running 1 completed 1 calls 1");
        EXPECT_EQ(timesLogged(child, thread, report), 1U) << child.err;
    }
}

TEST(STBThreadTest, DestructionJoinsQuietly) {
    const ChildResult child = runInChild([] {
        auto running = std::make_unique<BodyThread>(sleepUntilStopped);
        running->start();
        running.reset();
        BodyThread neverStarted(returnAtOnce);
    });
    EXPECT_TRUE(child.exitedWith(0));
    EXPECT_EQ(child.err, "");
}

TEST(STBThreadTest, SetPriorityActsOnTheCallingThreadOnly) {
    BodyThread thread(returnAtOnce);
    const int before = niceOfThisThread();
    bool permitted = false;
    std::thread([&] {
        thread.setPriority(STBThread::Priority::High);
        permitted = niceOfThisThread() == -5;
        thread.setPriority(STBThread::Priority::Normal);
        EXPECT_TRUE(!permitted || niceOfThisThread() == 0);
        thread.setPriority(STBThread::Priority::Low);
        EXPECT_EQ(niceOfThisThread(), 15);
    }).join();
    EXPECT_EQ(niceOfThisThread(), before);
    if (!permitted) GTEST_SKIP() << "negative nice values need a privilege here";
}

TEST(STBThreadTest, AUniqueThreadPointerOwnsOneRecord) {
    STBThread::UniqueThreadPtr record;
    EXPECT_FALSE(record);
    BodyThread thread(returnAtOnce);
    record.reset(new pthread_helper::thread<STBThread>(&thread, &STBThread::thread));
    ASSERT_TRUE(record);
    EXPECT_EQ(record->target, &thread);
    record.reset();
    EXPECT_FALSE(record);
}
