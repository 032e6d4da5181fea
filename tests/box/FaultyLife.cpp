#include "tests/box/FaultyLife.h"

#include <utility>

namespace {

constexpr char kUpTime[] = "Device.DeviceInfo.UpTime";
// It depends on the monotonic clock alone, so every cycle changes it, whatever else fails.
constexpr char kChangesInEveryCycle[] =
    "Device.Services.STBService.1.ServiceMonitoring.MainStream.1.Total.ResetTime";

// One setting of each home that the daemon has for them.
constexpr std::pair<const char*, const char*> kSettings[] = {
    {"Device.Services.STBService.1.X_Kelm.Config.SyslogHost", "10.1.2.3"},
    {"Device.DeviceInfo.ProvisioningCode", "code 17"},
    {"Device.IP.Interface.1.Alias", "living room"},
    {"Device.Services.STBService.1.ServiceMonitoring.SampleInterval", "77"},
    {"Device.Services.STBService.1.ServiceMonitoring.MainStream.1.Enable", "1"},
};

// Ten megabytes pass through the daemon in several copies, and the C library keeps some of what is
// freed; the address sanitizer keeps 256 MiB of it.
constexpr std::size_t kMemoryBoundKiB = (kIsSanitized ? 1024 : 128) * 1024;

}  // namespace

void FaultyLife::live(const Child::Environment& environment) {
    // Some faults hold a cycle up for half a minute, and sanitizers and emulators are slow.
    deadline_ = std::chrono::minutes(5);
    Fault atTheStart = faultsOfTheStart();
    // The box's own commands only: what a table calls missing must not be found on the host.
    Child::Environment complete{{"PATH", "/usr/bin"}};
    complete.insert(complete.end(), environment.begin(), environment.end());
    start("", complete);
    faults::require(!HasFatalFailure(), "no first cycle");
    atTheStart.reset();
    giveSettings();
    before_ = readTree();
    const Vitals baseline = quietVitalsOf(daemon().pid());
    Fault inTheCycles = faults();
    waitForACycle();
    underFaults();
    readTree();
    inTheCycles.reset();
    afterFaults();
    waitForACycle();
    after_ = readTree();
    checkSettings();
    expectNoMoreThan(baseline);
    EXPECT_LE(vitalsOf(daemon().pid()).residentKiB, baseline.residentKiB + kMemoryBoundKiB);
    expectOrderlyStop();
}

void FaultyLife::expectSame(const char* address) {
    EXPECT_EQ(before_.count(address), 1U) << address;
    EXPECT_EQ(after_[address], before_[address]) << address;
}

void FaultyLife::giveSettings() {
    for (const auto& [address, text] : kSettings) EXPECT_TRUE(client().set(address, text).ok);
    // A watched figure that changes in every cycle brings ubus into every cycle.
    watch({kUpTime});
}

void FaultyLife::checkSettings() {
    for (const auto& [address, text] : kSettings) EXPECT_EQ(value(address), text) << address;
}

// From a point of one cycle to the same point of the next one; a cycle under way does not count.
void FaultyLife::waitForACycle() {
    std::string last = value(kChangesInEveryCycle);
    int changes = 0;
    const auto looksDone = [&] {
        const TrReply now = client().getValue(kChangesInEveryCycle);
        if (now.ok && now.text != last) ++changes;
        if (now.ok) last = now.text;
        return changes == 2 || !daemon().isRunning();
    };
    faults::require(box::waitUntil(looksDone, deadline_), "the cycles have stopped");
    faults::require(daemon().isRunning(), "the daemon has ended");
}

FaultyLife::Tree FaultyLife::readTree() {
    const TrReply list = client().listParametersOnly();
    faults::require(list.ok, "no list: " + list.errorName);
    Tree tree;
    for (const std::string& address : list.list) {
        const TrReply reply = client().getValue(address);
        faults::require(reply.ok, address + ": " + reply.errorName + ", " + reply.errorText);
        tree[address] = reply.text;
    }
    return tree;
}
