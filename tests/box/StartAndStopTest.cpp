#include "tests/box/DaemonTest.h"
#include "tests/support/Repeating.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <regex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

namespace {

using std::chrono::milliseconds;

constexpr char kCode[] = "Device.DeviceInfo.ProvisioningCode";

class StartAndStopTest : public DaemonTest {
  protected:
    /// Starts the daemon and waits until its notify command, so many seconds slow, is under way.
    void startAndAwaitNotify(int seconds) {
        start();
        box::setFault("ubus", "slow " + std::to_string(seconds));
        watch({"Device.DeviceInfo.UpTime"});
        ASSERT_TRUE(box::waitForCalls("ubus"));
    }
    void expectToRunFor(milliseconds time) { EXPECT_FALSE(daemon().waitForEnd(time).has_value()); }
    /// The daemon ends with this status before its command does, and the command goes with it.
    void expectEndWithItsCommand(const ExitStatus& status, const std::vector<pid_t>& command) {
        expectEnd(status);
        EXPECT_FALSE(command.empty());
        for (const pid_t pid : command)
            EXPECT_TRUE(box::waitUntil([&] { return kill(pid, 0) != 0; }))
                << box::readFile("/proc/" + std::to_string(pid) + "/cmdline");
    }
    void expectTheSecondInterruptToEndIt() {
        daemon().send(SIGINT);
        // A blocked signal is pending until main has taken the first one; only then does the next
        // one count as a second.
        expectToRunFor(milliseconds(1500));
        const std::vector<pid_t> command = descendantsOf(daemon().pid());
        daemon().send(SIGINT);
        expectEndWithItsCommand({255, 0}, command);
    }
    /// The daemon logs that it has no well-known name for certain, and answers by its unique one.
    void expectServedByItsUniqueName(const Child& served) {
        const std::regex words("WARN.*serving as (\\S+) ");
        std::smatch found;
        std::string log;
        ASSERT_TRUE(box::waitUntil([&] {
            log = served.output();
            return std::regex_search(log, found, words);
        })) << log;
        TrClient other(bus().address(), found[1]);
        EXPECT_TRUE(box::waitUntil([&] {
            return other.getValue("Device.DeviceInfo.Manufacturer").text == "KELM";
        })) << found[1];
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
        ASSERT_TRUE(box::waitForCalls("chipid_tool"));
        pending_ = client().sendGetValue(kCode);
        ASSERT_TRUE(box::waitForCalls("uci"));
        ASSERT_TRUE(waitForLog("ERROR"));
        expectToRunFor(milliseconds(1200));
    }

    TrClient::Pending pending_;
};

TEST_F(StartAndStopTest, TwoInterruptsEndAtOnceWithStatus255WhileACommandHangs) {
    box::setFault("ps", "hang");
    startBus();
    launch();
    ASSERT_TRUE(box::waitForCalls("ps"));
    expectTheSecondInterruptToEndIt();
}

TEST_F(StartAndStopTest, TheSecondInterruptCountsWhileTheNotifyCommandRuns) {
    ASSERT_NO_FATAL_FAILURE(startAndAwaitNotify(60));
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
    expectOrderlyStop();
}

TEST_F(StartAndStopTest, TerminateAndHangUpKeepTheirDefaultActions) {
    for (const int signal : {SIGTERM, SIGHUP}) {
        start();
        daemon().send(signal);
        expectEnd({0, signal});
    }
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
        const auto end = daemon().waitForEnd();
        ASSERT_TRUE(end.has_value()) << "round " << i << " hangs";
        // Before main() has taken hold of the signal, its default action ends the process.
        const bool isGood = *end == ExitStatus{} || *end == ExitStatus{0, SIGINT} ||
                            (interrupts > 1 && *end == ExitStatus{255, 0});
        EXPECT_TRUE(isGood) << *end;
        if (i % 10 == 1) bus().wake();
        if (i % 10 == 2) bus().start();
    }
    EXPECT_TRUE(box::waitUntil([=] { return processCount() <= processes; }));
}

TEST_F(StartAndStopTest, WithoutABusTheReasonIsLogged) {
    const std::pair<const char*, const char*> rows[] = {
        {"unix:path=/no/such/bus", "/no/such/bus"},
        {"nonsense", "Address does not contain a colon"},
    };
    for (const auto& [address, reason] : rows) {
        launch({{"DBUS_SESSION_BUS_ADDRESS", address}});
        EXPECT_TRUE(waitForLog(reason)) << reason;
        EXPECT_TRUE(logHas("ERROR"));
        expectOrderlyStop();
    }
}

TEST_F(StartAndStopTest, ATakenNameIsLoggedAndTheUniqueNameServed) {
    start();
    Child second({KELM_TRD_PROGRAM}, "/tmp/second-output");
    expectServedByItsUniqueName(second);
    second.send(SIGINT);
    EXPECT_EQ(second.waitForEnd(), (ExitStatus{0, 0}));
    expectAnswers();
}

TEST_F(StartAndStopTest, ARefusedNameOrAnUnknownOwnerIsLoggedAndTheUniqueNameServed) {
    const std::string rows[] = {
        R"(own="com.kelm.stb.TR")",
        R"(send_interface="org.freedesktop.DBus" send_member="GetNameOwner")",
    };
    for (const std::string& refused : rows) {
        startBus("<policy context=\"mandatory\"><deny " + refused + "/></policy>");
        launch();
        expectServedByItsUniqueName(daemon());
        expectOrderlyStop();
        std::remove("/tmp/daemon-output");
    }
}

TEST_F(StartAndStopTest, ABusThatDiesEndsTheDaemonWithAnErrorAndTheNextOneHasItsSettings) {
    start();
    ASSERT_TRUE(client().set(kCode, "code 17").ok);
    bus().kill();
    expectEnd({1, 0});
    EXPECT_TRUE(logHas("ERROR"));
    EXPECT_TRUE(logHas("session bus"));
    bus().start();
    launch();
    waitForFirstCycle();
    EXPECT_EQ(value(kCode), "code 17");
}

// In the middle of a call, and while the worker holds the store.
TEST_F(StartAndStopTest, ABusThatDiesWhileACommandHangsEndsTheDaemonAndTheCommand) {
    const std::pair<const char*, const char*> rows[] = {{"uci", kCode},
                                                        {"ps", "Device.DeviceInfo.UpTime"}};
    for (const auto& [command, address] : rows) {
        SCOPED_TRACE(command);
        start();
        box::clearCalls(command);
        box::setFault(command, "hang");
        const TrClient::Pending starting = client().sendGetValue(address);
        ASSERT_TRUE(box::waitForCalls(command));
        const TrClient::Pending waiting = client().sendGetValue(address);
        const std::vector<pid_t> processes = descendantsOf(daemon().pid());
        bus().kill();
        expectEndWithItsCommand({1, 0}, processes);
        box::setFault(command, "");
    }
}

TEST_F(StartAndStopTest, AnInterruptWhileAFailedWorkerEndsTheDaemonCountsAsTheFirst) {
    ASSERT_NO_FATAL_FAILURE(startWithAFailingWorkerAndASlowCall());
    expectOrderlyStop();
}

TEST_F(StartAndStopTest, ASecondInterruptWhileAFailedWorkerEndsTheDaemonEndsItAtOnce) {
    ASSERT_NO_FATAL_FAILURE(startWithAFailingWorkerAndASlowCall());
    daemon().send(SIGINT);
    expectToRunFor(milliseconds(200));
    daemon().send(SIGINT);
    expectEnd({255, 0});
}

TEST_F(StartAndStopTest, AnIdleDaemonHasThreeThreads) {
    start();
    // A sanitizer starts another thread beside a program's first one, here as there.
    const Repeating second([] {}, milliseconds(10));
    EXPECT_EQ(daemon().threadCount(), threadCountOf(getpid()) + 1);
}

TEST_F(StartAndStopTest, ANormalLifeLogsNothing) {
    start();
    waitForCycles(1);
    expectOrderlyStop();
    EXPECT_EQ(daemon().output(), "");
}

}  // namespace
