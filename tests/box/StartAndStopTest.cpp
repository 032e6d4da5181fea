#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <csignal>
#include <future>
#include <random>
#include <string>
#include <thread>

#include <unistd.h>

namespace {

class StartAndStopTest : public DaemonTest {
  protected:
    /// Starts the daemon and waits until its notify command, so many seconds slow, is under way.
    void startAndAwaitNotify(int seconds) {
        start();
        box::setFault("ubus", "slow " + std::to_string(seconds));
        watch({"Device.DeviceInfo.UpTime"});
        ASSERT_TRUE(box::waitForCalls("ubus"));
    }
    void expectTheSecondInterruptToEndIt() {
        daemon().send(SIGINT);
        // A blocked signal is pending until main has taken the first one; only then is the second
        // one a second.
        EXPECT_FALSE(daemon().waitForEnd(std::chrono::milliseconds(1500)).has_value());
        daemon().send(SIGINT);
        const auto end = daemon().waitForEnd(std::chrono::seconds(10));
        ASSERT_TRUE(end.has_value());
        EXPECT_EQ(*end, (ExitStatus{255, 0}));
    }
};

TEST_F(StartAndStopTest, OneInterruptEndsInOrderWithStatusZero) {
    start();
    daemon().send(SIGINT);
    expectEnd({0, 0});
}

TEST_F(StartAndStopTest, AnInterruptLetsTheCycleUnderWayFinish) {
    box::setFault("ps", "slow 1");
    startBus();
    launch();
    ASSERT_TRUE(box::waitForCalls("ps"));
    daemon().send(SIGINT);
    expectEnd({0, 0});
    EXPECT_EQ(box::calls("ps").size(), 2U);
}

TEST_F(StartAndStopTest, TwoInterruptsEndAtOnceWithStatus255WhileACommandIsSlow) {
    box::setFault("ps", "slow 30");
    startBus();
    launch();
    ASSERT_TRUE(box::waitForCalls("ps"));
    expectTheSecondInterruptToEndIt();
}

TEST_F(StartAndStopTest, TheSecondInterruptCountsWhileTheNotifyCommandRuns) {
    ASSERT_NO_FATAL_FAILURE(startAndAwaitNotify(30));
    expectTheSecondInterruptToEndIt();
}

TEST_F(StartAndStopTest, ADaemonKilledWhileTheNotifyCommandRunsGivesItsNameUp) {
    ASSERT_NO_FATAL_FAILURE(startAndAwaitNotify(60));
    daemon().send(SIGKILL);
    expectEnd({0, SIGKILL});
    EXPECT_TRUE(box::waitUntil([this] { return client().owner().empty(); }));
}

TEST_F(StartAndStopTest, AnInterruptWhileTheNotifyCommandRunsIsNotLost) {
    ASSERT_NO_FATAL_FAILURE(startAndAwaitNotify(2));
    daemon().send(SIGINT);
    expectEnd({0, 0});
}

TEST_F(StartAndStopTest, TerminateKeepsItsDefaultAction) {
    start();
    daemon().send(SIGTERM);
    expectEnd({0, SIGTERM});
}

TEST_F(StartAndStopTest, HangUpKeepsItsDefaultAction) {
    start();
    daemon().send(SIGHUP);
    expectEnd({0, SIGHUP});
}

TEST_F(StartAndStopTest, AnInterruptAtAnyPointOfTheStartStopsTheDaemon) {
    startBus();
    std::mt19937 random(1);
    for (int i = 0; i < 200; ++i) {
        launch();
        // From before main() to a running daemon, which takes some tens of milliseconds.
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 60000));
        daemon().send(SIGINT);
        const auto end = daemon().waitForEnd(std::chrono::seconds(30));
        ASSERT_TRUE(end.has_value()) << "round " << i << " hangs\n" << daemon().output();
        // Before main() has taken hold of the signal, its default action ends the process.
        const bool beforeMain = *end == ExitStatus{0, SIGINT};
        EXPECT_TRUE(beforeMain || *end == ExitStatus{}) << *end << daemon().output();
    }
}

TEST_F(StartAndStopTest, WithoutABusTheReasonIsLoggedAndTheWorkerGoesOn) {
    launch({{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus"}});
    ASSERT_TRUE(box::waitUntil([this] { return logHas("ERROR"); }));
    EXPECT_TRUE(logHas("/no/such/bus")) << daemon().output();
    EXPECT_TRUE(box::waitForCalls("ps", 4));
    daemon().send(SIGINT);
    expectEnd({0, 0});
}

TEST_F(StartAndStopTest, ABadBusAddressIsExplainedInTheLog) {
    launch({{"DBUS_SESSION_BUS_ADDRESS", "nonsense"}});
    ASSERT_TRUE(box::waitUntil([this] { return logHas("ERROR"); }));
    EXPECT_TRUE(logHas("Address does not contain a colon")) << daemon().output();
    daemon().send(SIGINT);
    expectEnd({0, 0});
}

TEST_F(StartAndStopTest, ATakenNameIsWarnedOfAndServedAllTheSame) {
    start();
    Child second({KELM_TRD_PROGRAM}, "/tmp/second-output");
    ASSERT_TRUE(box::waitUntil([&] { return second.output().find("WARN") != std::string::npos; }));
    const std::string log = second.output();
    const std::size_t start = log.find("serving as ");
    ASSERT_NE(start, std::string::npos) << log;
    const std::string name = log.substr(start + 11, log.find(' ', start + 11) - start - 11);
    TrClient other(bus().address(), name);
    EXPECT_TRUE(box::waitUntil(
        [&] { return other.getValue("Device.DeviceInfo.Manufacturer").text == "KELM"; }));
    second.send(SIGINT);
    EXPECT_EQ(second.waitForEnd(), (ExitStatus{0, 0}));
    expectAnswers();
}

TEST_F(StartAndStopTest, ABusThatDiesWhileIdleEndsTheDaemonWithAnError) {
    start();
    bus().kill();
    expectEnd({1, 0});
    EXPECT_TRUE(logHas("ERROR"));
    EXPECT_TRUE(logHas("session bus")) << daemon().output();
}

TEST_F(StartAndStopTest, ABusThatDiesInTheMiddleOfACallEndsTheDaemonWithAnError) {
    start();
    box::setFault("uci", "slow 20");
    const TrClient::Pending call = client().sendGetValue("Device.DeviceInfo.ProvisioningCode");
    ASSERT_TRUE(box::waitForCalls("uci"));
    bus().kill();
    // The call itself lasts twenty seconds; the daemon does not wait for it.
    const auto end = daemon().waitForEnd(std::chrono::seconds(10));
    ASSERT_TRUE(end.has_value());
    EXPECT_EQ(*end, (ExitStatus{1, 0}));
    EXPECT_TRUE(logHas("ERROR"));
}

TEST_F(StartAndStopTest, ABusThatDiesWhileTheWorkerHoldsTheStoreEndsTheDaemonWithAnError) {
    start();
    box::setFault("ps", "slow 20");
    const std::size_t before = box::calls("ps").size();
    ASSERT_TRUE(box::waitUntil([=] { return box::calls("ps").size() > before; }));
    const TrClient::Pending call = client().sendGetValue("Device.DeviceInfo.UpTime");
    bus().kill();
    const auto end = daemon().waitForEnd(std::chrono::seconds(10));
    ASSERT_TRUE(end.has_value());
    EXPECT_EQ(*end, (ExitStatus{1, 0}));
}

TEST_F(StartAndStopTest, AFailedWorkerEndsTheDaemonWithAnError) {
    ASSERT_EQ(std::system("mount --bind /dev/null /proc/meminfo"), 0);
    startBus();
    launch();
    expectEnd({1, 0});
    EXPECT_TRUE(logHas("ERROR"));
    EXPECT_TRUE(logHas("basic_string::substr")) << daemon().output();
}

TEST_F(StartAndStopTest, AnIdleDaemonHasThreeThreads) {
    start();
    // A sanitizer starts a thread of its own beside a program's first one, here as there.
    std::promise<void> release;
    std::thread second([&] { release.get_future().wait(); });
    const std::size_t withTwoThreads = threadCountOf(getpid());
    release.set_value();
    second.join();
    EXPECT_EQ(daemon().threadCount(), withTwoThreads + 1);
}

TEST_F(StartAndStopTest, ANormalLifeLogsNothing) {
    start();
    waitForCycles(1);
    daemon().send(SIGINT);
    expectEnd({0, 0});
    // The commands' own complaints go to the same place; the daemon's lines name their module.
    EXPECT_FALSE(logHas(" [")) << daemon().output();
}

}  // namespace
