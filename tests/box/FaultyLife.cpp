#include "tests/box/FaultyLife.h"

#include "tests/box/SystemFaults.h"
#include "tests/support/Box.h"
#include "tests/support/Repeating.h"
#include "tests/support/Talker.h"

#include <csignal>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr char kUpTime[] = "Device.DeviceInfo.UpTime";
// It depends on the monotonic clock alone, so every cycle changes it, whatever else fails.
constexpr char kChangesInEveryCycle[] =
    "Device.Services.STBService.1.ServiceMonitoring.MainStream.1.Total.ResetTime";
// Some faults hold a cycle up for half a minute, and sanitizers and emulators are slow.
constexpr seconds kDeadline{300};

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
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kMemoryBoundKiB = 1024 * 1024;
#else
constexpr std::size_t kMemoryBoundKiB = 128 * 1024;
#endif

// A failed step of a life; the life ends with it.
[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what);
}

// A flooding command has printed ten megabytes of it.
std::string endOf(const std::string& output) {
    constexpr std::size_t kEnough = 5000;
    return output.size() <= kEnough ? output : output.substr(output.size() - kEnough);
}

bool waitUntil(const std::function<bool()>& condition) {
    return box::waitUntil(condition, kDeadline);
}

}  // namespace

FaultyLife::FaultyLife(const Script& script) {
    try {
        live(script);
    } catch (const std::exception& error) {
        complaint_ = error.what();
    }
    if (complaint_.empty() || !daemon_) return;
    complaint_ += daemon_->isRunning() ? "; the daemon runs\n" : "; the daemon has ended\n";
    complaint_ += endOf(daemon_->output());
}

std::string FaultyLife::valueIn(const Tree& tree, const std::string& address) {
    const auto found = tree.find(address);
    return found == tree.end() ? "(none)" : found->second;
}

void FaultyLife::live(const Script& script) {
    std::unique_ptr<Repeating> watchdog;
    if (script.killHanging) {
        watchdog = std::make_unique<Repeating>(
            [this] {
                if (daemonPid_ != 0) faults::killHangingCommands(daemonPid_);
            },
            milliseconds(100));
    }
    script.spoilStart();
    start(script.environment);
    script.restoreStart();
    giveSettings();
    before_ = readTree();
    const Vitals baseline = quietVitalsOf(daemon_->pid());
    script.spoil(daemon_->pid());
    waitForCycles(1);
    script.underFaults(*client_);
    readTree();
    script.restore(daemon_->pid());
    script.afterFaults(*client_);
    waitForCycles(1);
    after_ = readTree();
    checkSettings();
    checkVitals(baseline);
    stop();
}

void FaultyLife::start(const Child::Environment& environment) {
    bus_ = std::make_unique<PrivateBus>();
    // The box's own commands only: what a table calls missing must not be found on the host.
    Child::Environment complete{{"PATH", "/usr/bin"}};
    complete.insert(complete.end(), environment.begin(), environment.end());
    daemon_ = std::make_unique<Child>(std::vector<std::string>{KELM_TRD_PROGRAM},
                                      "/tmp/daemon-output", complete);
    daemonPid_ = daemon_->pid();
    client_ = std::make_unique<TrClient>(bus_->address());
    client_->setTimeout(kDeadline);
    if (!waitForFirstCycle(*client_, kDeadline)) fail("no first cycle");
}

void FaultyLife::giveSettings() {
    for (const auto& [address, text] : kSettings)
        if (!client_->set(address, text).ok) fail(std::string("cannot set ") + address);
    // A watched figure that changes in every cycle brings ubus into every cycle.
    box::writeNotificationFile({kUpTime});
    if (!client_->updateNotifTable().ok) fail("cannot read the notification file");
}

void FaultyLife::checkSettings() {
    for (const auto& [address, text] : kSettings) {
        const std::string now = client_->getValue(address).text;
        if (now != text) fail(std::string(address) + " was " + text + " and is " + now);
    }
}

// From a point of one cycle to the same point of the next one, that many times; a cycle under way
// does not count.
void FaultyLife::waitForCycles(unsigned cycles) {
    std::string last = client_->getValue(kChangesInEveryCycle).text;
    unsigned changes = 0;
    const auto looksDone = [&] {
        const TrReply now = client_->getValue(kChangesInEveryCycle);
        if (now.ok && now.text != last) {
            ++changes;
            last = now.text;
        }
        return changes > cycles || !daemon_->isRunning();
    };
    if (!waitUntil(looksDone)) fail("the cycles have stopped");
    if (!daemon_->isRunning()) fail("the daemon has ended");
}

FaultyLife::Tree FaultyLife::readTree() {
    const TrReply list = client_->listParametersOnly();
    if (!list.ok) fail("no list: " + list.errorName);
    Tree tree;
    for (const std::string& address : list.list) {
        const TrReply reply = client_->getValue(address);
        if (!reply.ok) fail(address + ": " + reply.errorName + ", " + reply.errorText);
        tree[address] = reply.text;
    }
    return tree;
}

void FaultyLife::checkVitals(const Vitals& baseline) {
    Vitals now;
    const auto isAsBefore = [&] {
        now = quietVitalsOf(daemon_->pid());
        return now.holdsNoMoreThan(baseline);
    };
    if (!waitUntil(isAsBefore) || now.residentKiB > baseline.residentKiB + kMemoryBoundKiB) {
        std::ostringstream text;
        text << "before: " << baseline << "; after: " << now;
        fail(text.str());
    }
}

void FaultyLife::stop() {
    daemon_->send(SIGINT);
    const auto end = daemon_->waitForEnd(kDeadline);
    std::ostringstream text;
    if (!end) fail("the daemon does not stop");
    text << "the daemon ended with " << *end;
    if (!(*end == ExitStatus{})) fail(text.str());
}
