// What the system below the daemon can do to it: limits, clocks, interfaces, a client that is busy.

#include "tests/box/DaemonTest.h"
#include "tests/box/FaultyLife.h"
#include "tests/box/Shim.h"
#include "tests/box/SystemFaults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

constexpr char kUpTime[] = "Device.DeviceInfo.UpTime";
constexpr int kManyInterfaces = 200;

// Throws, so that the complaint names what a row finds wrong, not a lost setting.
void require(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(what);
}

void readTheTableAgainAndAgain(TrClient& client) {
    const faults::RewrittenNotificationFile rewritten;
    while (rewritten.times() < 1000) {
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

void readTheZones(TrClient& client) {
    require(client.getValue(kUpTime).ok, "a read fails");
}

void expectManyInterfaces(TrClient& client) {
    const std::string last = "Device.IP.Interface." + std::to_string(kManyInterfaces + 2) + ".Name";
    require(client.getValue(last).text == "wlan0", "the interfaces are not all there");
}

struct Row {
    const char* name;
    std::function<void(pid_t)> spoil;
    std::function<void(pid_t)> restore;
    std::function<void(TrClient&)> underFaults = [](TrClient&) {};
    bool isForSanitizers = true;
    bool isShimmed = false;
};

std::vector<Row> rows() {
    const auto none = [](pid_t) {};
    return {
        {"TheDescriptorLimitIsReached", [](pid_t pid) { faults::setLimit(pid, RLIMIT_NOFILE, 3); },
         [](pid_t pid) { faults::setLimit(pid, RLIMIT_NOFILE, 1024); }, [](TrClient&) {}},
        // A sanitizer's shadow memory is far beyond any limit.
        {"TheMemoryLimitIsNear",
         [](pid_t pid) { faults::setLimit(pid, RLIMIT_AS, faults::addressSpaceOf(pid) + 65536); },
         [](pid_t pid) { faults::setLimit(pid, RLIMIT_AS, RLIM_INFINITY); }, [](TrClient&) {},
         false},
        {"NoProcessCanBeStarted", [](pid_t) { shim::set("no-processes", ""); },
         [](pid_t) { shim::clear("no-processes"); }, [](TrClient&) {}, true, true},
        {"TheInterfacesCannotBeListed", [](pid_t) { shim::set("no-interfaces", ""); },
         [](pid_t) { shim::clear("no-interfaces"); }, [](TrClient&) {}, true, true},
        {"ThereAreHundredsOfInterfaces", [](pid_t) { faults::addInterfaces(kManyInterfaces); },
         [](pid_t) { faults::removeInterfaces(kManyInterfaces); }, expectManyInterfaces},
        {"TheClockIsSteppedBackAnHour", [](pid_t) { shim::set("clock", "-3600"); },
         [](pid_t) { shim::set("clock", "0"); }, [](TrClient&) {}, true, true},
        {"TheClockIsSteppedAheadAYearAndBack", [](pid_t) { shim::set("clock", "31536000"); },
         [](pid_t) { shim::set("clock", "0"); }, [](TrClient&) {}, true, true},
        {"TheTimeZoneChanges",
         [](pid_t) {
             std::filesystem::rename("/etc/localtime", "/etc/localtime.away");
             std::filesystem::create_symlink("/usr/share/zoneinfo/Asia/Kolkata", "/etc/localtime");
         },
         [](pid_t) { std::filesystem::rename("/etc/localtime.away", "/etc/localtime"); },
         readTheZones},
        {"TheNotificationFileIsRewrittenAllTheTime", none, none, readTheTableAgainAndAgain},
        {"UbusIsSlowWhileClientsRead", [](pid_t) { box::setFault("ubus", "slow 3"); },
         [](pid_t) { box::setFault("ubus", ""); }, readWhileUbusIsSlow},
    };
}

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

class SystemFaultTest : public ::testing::TestWithParam<Row> {};

TEST_P(SystemFaultTest, TheDaemonLivesOn) {
    const Row& row = GetParam();
    if (kIsSanitized && !row.isForSanitizers)
        GTEST_SKIP() << "a sanitizer needs more address space than any limit";
    FaultyLife::Script script;
    script.spoil = row.spoil;
    script.restore = row.restore;
    script.underFaults = row.underFaults;
    script.afterFaults = [](TrClient& client) { client.updateNotifTable(); };
    if (row.isShimmed) script.environment = shim::environment();
    const FaultyLife life(script);
    EXPECT_EQ(life.complaint(), "");
    EXPECT_EQ(life.after("Device.IP.Interface.1.Name"), "eth0");
    EXPECT_EQ(life.after("Device.IP.Interface.1.IPv4Address.1.IPAddress"), "192.168.1.20");
}

INSTANTIATE_TEST_SUITE_P(System, SystemFaultTest, ::testing::ValuesIn(rows()),
                         [](const auto& row) { return std::string(row.param.name); });

class ShimTest : public DaemonTest {
  protected:
    void SetUp() override {
        startBus();
        launch(shim::environment());
        waitForFirstCycle();
    }
    void TearDown() override { std::filesystem::remove_all(shim::kFolder); }
};

TEST_F(ShimTest, TheDaemonStopsInOrderAfterTheClockWasSteppedBack) {
    shim::set("clock", "-3600");
    daemon().send(SIGINT);
    expectEnd({0, 0});
}

TEST_F(ShimTest, TheClocksOfTheBoxAreFollowedThroughManySteps) {
    for (const char* offset : {"-60", "-3600", "2000000000", "0"}) {
        shim::set("clock", offset);
        const std::string upTime = value(kUpTime);
        ASSERT_TRUE(box::waitUntil([&] { return value(kUpTime) != upTime; })) << offset;
    }
}

class MemoryLimitTest : public DaemonTest {};

// Memory that cannot be had in the middle of a cycle ends the worker, and a daemon without one ends
// in order, for its supervisor to start another one.
TEST_F(MemoryLimitTest, ALogThatDoesNotFitIsSurvivedOrEndsTheDaemonInOrder) {
    if (kIsSanitized) GTEST_SKIP() << "a sanitizer needs more address space than any limit";
    start();
    faults::setLimit(daemon().pid(), RLIMIT_AS,
                     faults::addressSpaceOf(daemon().pid()) + (4U << 20));
    box::writeFile("/tmp/syslog", std::string(10U << 20, 'x'));
    const std::string upTime = value(kUpTime);
    box::waitUntil([&] { return !daemon().isRunning() || value(kUpTime) != upTime; });
    if (daemon().isRunning()) {
        faults::setLimit(daemon().pid(), RLIMIT_AS, RLIM_INFINITY);
        expectAnswers();
        daemon().send(SIGINT);
        expectEnd({0, 0});
    } else {
        expectEnd({0, 0});
        EXPECT_TRUE(logHas("ERROR"));
    }
}

}  // namespace
