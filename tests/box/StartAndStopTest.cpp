#include "tests/box/DaemonTest.h"
#include "tests/box/Vitals.h"

#include <gtest/gtest.h>

#include <csignal>
#include <future>
#include <random>
#include <string>
#include <thread>
#include <vector>

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
    /// The daemon ends with this status before its command does, and the command goes with it.
    void expectEndWithItsCommand(const ExitStatus& status, const std::vector<pid_t>& command) {
        const auto end = daemon().waitForEnd(std::chrono::seconds(10));
        ASSERT_TRUE(end.has_value()) << daemon().output();
        EXPECT_EQ(*end, status);
        EXPECT_FALSE(command.empty());
        for (const pid_t pid : command)
            EXPECT_TRUE(box::waitUntil([&] { return kill(pid, 0) != 0; }))
                << box::readFile("/proc/" + std::to_string(pid) + "/cmdline");
    }
    void expectTheSecondInterruptToEndIt() {
        daemon().send(SIGINT);
        // A blocked signal is pending until main has taken the first one; only then does the next
        // one count as a second.
        EXPECT_FALSE(daemon().waitForEnd(std::chrono::milliseconds(1500)).has_value());
        const std::vector<pid_t> command = descendantsOf(daemon().pid());
        daemon().send(SIGINT);
        expectEndWithItsCommand({255, 0}, command);
    }
    /// The unique name under which a daemon without its well-known one serves, by its log.
    static std::string servedAs(const Child& daemon) {
        const std::string words = "serving as ";
        box::waitUntil([&] { return daemon.output().find(words) != std::string::npos; });
        const std::string log = daemon.output();
        const std::size_t start = log.find(words);
        if (start == std::string::npos) return "nobody: " + log;
        return log.substr(start + words.size(),
                          log.find(' ', start + words.size()) - (start + words.size()));
    }
    void expectServedAs(const std::string& name) {
        TrClient other(bus().address(), name);
        EXPECT_TRUE(box::waitUntil([&] {
            return other.getValue("Device.DeviceInfo.Manufacturer").text == "KELM";
        })) << name;
    }
    /// Starts a daemon whose worker fails while a client's call, three seconds slow, is served.
    void startWithAFailingWorkerAndASlowCall() {
        ASSERT_EQ(std::system("mount --bind /dev/null /proc/meminfo"), 0);
        box::setFault("chipid_tool", "slow 1");
        box::setFault("uci", "slow 3");
        startBus();
        launch();
        connect();
        ASSERT_TRUE(box::waitUntil([this] { return !client().owner().empty(); }));
        ASSERT_TRUE(box::waitUntil([] { return !box::calls("chipid_tool").empty(); }));
        pending_ = client().sendGetValue("Device.DeviceInfo.ProvisioningCode");
        ASSERT_TRUE(box::waitUntil([] { return !box::calls("uci").empty(); }));
        ASSERT_TRUE(box::waitUntil([this] { return logHas("ERROR"); }));
    }

    TrClient::Pending pending_;
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

TEST_F(StartAndStopTest, TwoInterruptsEndAtOnceWithStatus255WhileACommandHangs) {
    box::setFault("ps", "hang");
    startBus();
    launch();
    ASSERT_TRUE(box::waitForCalls("ps"));
    expectTheSecondInterruptToEndIt();
}

TEST_F(StartAndStopTest, TheSecondInterruptCountsWhileTheNotifyCommandRuns) {
    ASSERT_NO_FATAL_FAILURE(startAndAwaitNotify(30));
    expectTheSecondInterruptToEndIt();
}

TEST_F(StartAndStopTest, ADaemonKilledWhileTheNotifyCommandRunsReleasesItsName) {
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

// One or two interrupts, at any moment from before main() to a daemon at work, which takes some
// tens of milliseconds.
TEST_F(StartAndStopTest, AStormOfStopsEndsEveryStartAndLeavesNoProcess) {
    constexpr int kStarts = 240;
    startBus();
    const std::size_t processes = processCount();
    std::mt19937 random(1);
    for (int i = 0; i < kStarts; ++i) {
        if (i % 10 == 1) bus().freeze();
        if (i % 10 == 2) bus().kill();
        const unsigned interrupts = 1 + random() % 2;
        launch();
        for (unsigned sent = 0; sent < interrupts; ++sent) {
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 60000));
            daemon().send(SIGINT);
        }
        const auto end = daemon().waitForEnd(std::chrono::seconds(30));
        ASSERT_TRUE(end.has_value()) << "round " << i << " hangs\n" << daemon().output();
        // Before main() has taken hold of the signal, its default action ends the process.
        const bool isGood = *end == ExitStatus{} || *end == ExitStatus{0, SIGINT} ||
                            (interrupts > 1 && *end == ExitStatus{255, 0});
        EXPECT_TRUE(isGood) << *end << daemon().output();
        if (i % 10 == 1) bus().wake();
        if (i % 10 == 2) bus().start();
    }
    EXPECT_TRUE(box::waitUntil([=] { return processCount() <= processes; }));
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

TEST_F(StartAndStopTest, ATakenNameIsLoggedAndTheUniqueNameServed) {
    start();
    Child second({KELM_TRD_PROGRAM}, "/tmp/second-output");
    expectServedAs(servedAs(second));
    EXPECT_NE(second.output().find("WARN"), std::string::npos);
    second.send(SIGINT);
    EXPECT_EQ(second.waitForEnd(), (ExitStatus{0, 0}));
    expectAnswers();
}

TEST_F(StartAndStopTest, ARefusedNameIsLoggedAndTheUniqueNameServed) {
    startBus(R"(<policy context="mandatory"><deny own="com.kelm.stb.TR"/></policy>)");
    launch();
    expectServedAs(servedAs(daemon()));
    EXPECT_TRUE(logHas("WARN"));
    daemon().send(SIGINT);
    expectEnd({0, 0});
}

TEST_F(StartAndStopTest, AnUnknownOwnerIsLoggedAndTheObjectServed) {
    startBus(
        R"(<policy context="mandatory"><deny send_interface="org.freedesktop.DBus" send_member="GetNameOwner"/></policy>)");
    launch();
    waitForFirstCycle();  // by its well-known name
    EXPECT_TRUE(logHas("WARN")) << daemon().output();
    expectServedAs(servedAs(daemon()));
    daemon().send(SIGINT);
    expectEnd({0, 0});
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
    box::setFault("uci", "hang");
    const TrClient::Pending call = client().sendGetValue("Device.DeviceInfo.ProvisioningCode");
    ASSERT_TRUE(box::waitForCalls("uci"));
    const std::vector<pid_t> command = descendantsOf(daemon().pid());
    bus().kill();
    expectEndWithItsCommand({1, 0}, command);
    EXPECT_TRUE(logHas("ERROR"));
}

TEST_F(StartAndStopTest, ABusThatDiesWhileTheWorkerHoldsTheStoreEndsTheDaemonWithAnError) {
    start();
    box::setFault("ps", "hang");
    const std::size_t before = box::calls("ps").size();
    ASSERT_TRUE(box::waitUntil([=] { return box::calls("ps").size() > before; }));
    const TrClient::Pending call = client().sendGetValue("Device.DeviceInfo.UpTime");
    const std::vector<pid_t> command = descendantsOf(daemon().pid());
    bus().kill();
    expectEndWithItsCommand({1, 0}, command);
}

TEST_F(StartAndStopTest, AFailedWorkerIsLoggedAndEndsTheDaemonInOrder) {
    ASSERT_EQ(std::system("mount --bind /dev/null /proc/meminfo"), 0);
    startBus();
    launch();
    expectEnd({0, 0});
    EXPECT_TRUE(logHas("ERROR"));
    EXPECT_TRUE(logHas("basic_string::substr")) << daemon().output();
}

TEST_F(StartAndStopTest, AnInterruptWhileAFailedWorkerEndsTheDaemonCountsAsTheFirst) {
    ASSERT_NO_FATAL_FAILURE(startWithAFailingWorkerAndASlowCall());
    EXPECT_FALSE(daemon().waitForEnd(std::chrono::milliseconds(1200)).has_value());
    daemon().send(SIGINT);
    expectEnd({0, 0});
}

TEST_F(StartAndStopTest, ASecondInterruptWhileAFailedWorkerEndsTheDaemonEndsItAtOnce) {
    ASSERT_NO_FATAL_FAILURE(startWithAFailingWorkerAndASlowCall());
    EXPECT_FALSE(daemon().waitForEnd(std::chrono::milliseconds(1200)).has_value());
    daemon().send(SIGINT);
    EXPECT_FALSE(daemon().waitForEnd(std::chrono::milliseconds(200)).has_value());
    daemon().send(SIGINT);
    expectEnd({255, 0});
}

TEST_F(StartAndStopTest, AnIdleDaemonHasThreeThreads) {
    start();
    // A sanitizer starts another thread beside a program's first one, here as there.
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
    EXPECT_EQ(daemon().output(), "");
}

}  // namespace
