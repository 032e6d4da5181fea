// What the system below the daemon can do to it: limits, clocks, interfaces, a client that is busy.

#include "tests/box/FaultyLife.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <sys/resource.h>

namespace {

using faults::require;

constexpr char kUpTime[] = "Device.DeviceInfo.UpTime";
constexpr int kManyInterfaces = 200;

void readTheTableAgainAndAgain(TrClient& client) {
    for (int i = 0; i < 1000; ++i) {
        require(client.updateNotifTable().ok, "the table cannot be read");
        require(client.checkValueChange().ok, "the changes cannot be fetched");
    }
}

// Reads must get through while ubus holds the cycle up: the store is not locked then.
void readWhileUbusIsSlow(TrClient& client) {
    box::clearCalls("ubus");
    require(box::waitForCalls("ubus"), "ubus is not called");
    for (int i = 0; i < 200; ++i) require(client.getValue(kUpTime).ok, "a read fails");
    require(std::system("pgrep -f 'ubus -t 1' >/dev/null") == 0, "the reads waited for ubus");
}

void expectManyInterfaces(TrClient& client) {
    const std::string last = "Device.IP.Interface." + std::to_string(kManyInterfaces + 2) + ".Name";
    require(client.getValue(last).text == "wlan0", "the interfaces are not all there");
}

Fault anotherTimeZone() {
    Fault away = faults::withoutFile("/etc/localtime");
    std::filesystem::create_symlink("/usr/share/zoneinfo/Asia/Kolkata", "/etc/localtime");
    return away;
}

struct Row {
    const char* name;
    std::function<Fault(pid_t)> fault;
    std::function<void(TrClient&)> underFaults = [](TrClient&) {};
    bool isShimmed = false;
};

std::function<Fault(pid_t)> shim(const char* name, const char* content = "") {
    return [=](pid_t) { return faults::shim(name, content); };
}

std::vector<Row> rows() {
    const auto nothing = [](TrClient&) {};
    return {
        {"TheDescriptorLimitIsReached",
         [](pid_t pid) { return faults::limit(pid, RLIMIT_NOFILE, 3); }},
        {"TheMemoryLimitIsNear",
         [](pid_t pid) {
             return faults::limit(pid, RLIMIT_AS, faults::addressSpaceOf(pid) + 65536);
         }},
        {"NoProcessCanBeStarted", shim("no-processes"), nothing, true},
        {"TheInterfacesCannotBeListed", shim("no-interfaces"), nothing, true},
        {"ThereAreHundredsOfInterfaces",
         [](pid_t) { return faults::moreInterfaces(kManyInterfaces); }, expectManyInterfaces},
        {"TheClockIsSteppedBackAnHour", shim("clock", "-3600"), nothing, true},
        {"TheClockIsSteppedAheadAYearAndBack", shim("clock", "31536000"), nothing, true},
        {"TheTimeZoneChanges", [](pid_t) { return anotherTimeZone(); }},
        {"TheNotificationFileIsRewrittenAllTheTime",
         [](pid_t) { return faults::rewrittenNotificationFile(); }, readTheTableAgainAndAgain},
        {"UbusIsSlowWhileClientsRead", [](pid_t) { return faults::command("ubus", "slow 3"); },
         readWhileUbusIsSlow},
    };
}

class SystemFaultTest : public FaultyLife, public ::testing::WithParamInterface<Row> {
  protected:
    Fault faults() override { return GetParam().fault(daemon().pid()); }
    void underFaults() override { GetParam().underFaults(client()); }
    void afterFaults() override { client().updateNotifTable(); }
};

TEST_P(SystemFaultTest, TheDaemonLivesOn) {
    live(GetParam().isShimmed ? faults::shimEnvironment() : Child::Environment{});
    EXPECT_EQ(after("Device.IP.Interface.1.Name"), "eth0");
    EXPECT_EQ(after("Device.IP.Interface.1.IPv4Address.1.IPAddress"), "192.168.1.20");
}

INSTANTIATE_TEST_SUITE_P(System, SystemFaultTest, ::testing::ValuesIn(rows()),
                         [](const auto& row) { return std::string(row.param.name); });

class ShimTest : public DaemonTest {
  protected:
    void SetUp() override { start("", faults::shimEnvironment()); }
};

TEST_F(ShimTest, TheDaemonStopsInOrderAfterTheClockWasSteppedBack) {
    const Fault step = faults::shim("clock", "-3600");
    expectOrderlyStop();
}

TEST_F(ShimTest, TheClocksOfTheBoxAreFollowedThroughManySteps) {
    for (const char* offset : {"-60", "-3600", "2000000000", "0"}) {
        const Fault step = faults::shim("clock", offset);
        const std::string upTime = value(kUpTime);
        ASSERT_TRUE(box::waitUntil([&] { return value(kUpTime) != upTime; })) << offset;
    }
}

class MemoryLimitTest : public DaemonTest {};

// Memory that cannot be had in the middle of a cycle ends the worker, and a daemon without one ends
// in order, for its supervisor to start another one.
TEST_F(MemoryLimitTest, ALogThatDoesNotFitIsSurvivedOrEndsTheDaemonInOrder) {
    start();
    Fault limit = faults::limit(daemon().pid(), RLIMIT_AS,
                                faults::addressSpaceOf(daemon().pid()) + (4U << 20));
    box::writeFile("/tmp/syslog", std::string(10U << 20, 'x'));
    const std::string upTime = value(kUpTime);
    box::waitUntil([&] { return !daemon().isRunning() || value(kUpTime) != upTime; });
    if (daemon().isRunning()) {
        limit.reset();
        expectAnswers();
        expectOrderlyStop();
    } else {
        expectEnd({0, 0});
        EXPECT_TRUE(logHas("ERROR"));
    }
}

}  // namespace
