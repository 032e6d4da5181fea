#include "bench/LogText.h"
#include "bench/Table.h"
#include "bench/whole/Figures.h"
#include "bench/whole/Process.h"
#include "tests/support/Box.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace bench {

namespace {

constexpr std::size_t kLogBytes = std::size_t{16} << 20;
constexpr char kLogFile[] = "/tmp/syslog";
constexpr char kLogAddress[] = "Device.DeviceInfo.DeviceLog";
constexpr int kLogCycles = 4;
constexpr std::size_t kUnreadLogBytes = std::size_t{2} << 20;
constexpr std::size_t kUnreadReads = 400;

void getTimes(const Service& service, int calls) {
    for (int done = 0; done < calls; done += kInFlight) service.getMany();
}

std::string megabytes(std::uint64_t kilobytes) {
    return fixed(static_cast<double>(kilobytes) / 1024, 1) + " MiB";
}

// The log grows before every cycle, so that each one finds a change.
void letCyclesPass(const std::function<void()>& meanwhile) {
    for (int cycle = 0; cycle < kLogCycles; ++cycle) {
        std::ofstream(kLogFile, std::ios::app) << "Jan  1 12:00:01 stb daemon.info: one more\n";
        const std::size_t goal = box::cyclesSoFar() + 1;
        box::waitUntil([&] {
            meanwhile();
            return box::cyclesSoFar() >= goal;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
    }
}

/// The daemon's peak above its idle size in multiples of the escaped log.
double peakOver(const Service& service, std::uint64_t idle, double escaped, std::string& note) {
    const std::uint64_t peak = statusKilobytes(service.pid(), "VmHWM");
    note = "peak " + megabytes(peak) + ", idle " + megabytes(idle) + ", escaped " +
           fixed(escaped / 1024 / 1024, 1) + " MiB";
    return static_cast<double>(peak - std::min(peak, idle)) * 1024 / escaped;
}

void watchLog(TrClient& client) {
    box::writeNotificationFile({kLogAddress});
    if (!client.updateNotifTable().ok) fail("no notification table");
}

}  // namespace

void reportParameterMemory(const Fleet& fleet) {
    const std::uint64_t ours = mapsKilobytes(fleet.full.pid(), "Private_Dirty");
    const std::uint64_t reference = mapsKilobytes(fleet.dbuscxx.pid(), "Private_Dirty");
    const std::uint64_t asStarted = mapsKilobytes(fleet.daemon.pid(), "Private_Dirty");
    const auto perParameter = [](std::uint64_t more, std::uint64_t less) {
        return (static_cast<double>(more) - static_cast<double>(less)) * 1024 / kManyParameters;
    };
    reportAtMost(
        "private bytes per parameter above the reference", perParameter(ours, reference), 250,
        "10,000 parameters: " + std::to_string(ours) + " kB / " + std::to_string(reference) +
            " kB; the daemon as started " + std::to_string(asStarted) + " kB");
    report("idle resident memory", megabytes(statusKilobytes(fleet.daemon.pid(), "VmRSS")),
           "of it private " + megabytes(asStarted));
}

void reportGrowth(const Fleet& fleet) {
    getTimes(fleet.daemon, 10'000);
    const std::uint64_t early = statusKilobytes(fleet.daemon.pid(), "VmRSS");
    getTimes(fleet.daemon, 990'000);
    const std::uint64_t late = statusKilobytes(fleet.daemon.pid(), "VmRSS");
    reportAtMost("resident memory after 1,000,000 calls / after 10,000",
                 static_cast<double>(late) / static_cast<double>(early), 1.02,
                 std::to_string(late) + " kB / " + std::to_string(early) + " kB");
}

void reportUnreadMemory() {
    // What waits for one client is bounded, as on a box: the bus drops what is above.
    const PrivateBus bus("<limit name=\"max_outgoing_bytes\">64000000</limit>");
    box::writeFile("/tmp/syslog.0", "");
    box::writeFile(kLogFile, logText(kUnreadLogBytes));
    const Service service = startDaemon(bus, "/tmp/unread-output");
    letCyclesPass([] {});
    const auto reply = static_cast<double>(service.client->getValue(kLogAddress).text.size());
    const std::uint64_t idle = statusKilobytes(service.pid(), "VmRSS");
    resetPeak(service.pid());
    TrClient unread(bus.address());
    std::vector<TrClient::Pending> calls(kUnreadReads);
    for (auto& call : calls) call = unread.sendGetValue(kLogAddress);
    service.get();  // answered after them
    std::string note;
    const double peak = peakOver(service, idle, reply, note);
    reportAtMost("400 unread reads of a log of 2 MiB: peak memory above idle / reply", peak, 8.0,
                 note);
}

void reportLogMemory() {
    const PrivateBus bus;
    box::writeFile("/tmp/syslog.0", "");
    box::writeFile(kLogFile, "");
    const Service service = startDaemon(bus, "/tmp/log-output");
    const std::uint64_t idle = statusKilobytes(service.pid(), "VmRSS");
    box::writeFile(kLogFile, logText(kLogBytes));
    letCyclesPass([] {});
    const auto escaped = static_cast<double>(service.client->getValue(kLogAddress).text.size());
    std::string note;
    resetPeak(service.pid());
    letCyclesPass([] {});
    const double quiet = peakOver(service, idle, escaped, note);
    reportAtMost("DeviceLog of 16 MiB: peak memory / escaped size", quiet, 3.0, note);
    resetPeak(service.pid());
    letCyclesPass([&] { service.client->getValue(kLogAddress); });
    const double read = peakOver(service, idle, escaped, note);
    report("the same while a client reads it without a pause", fixed(read, 2), note);
    watchLog(*service.client);
    resetPeak(service.pid());
    letCyclesPass([] {});
    const double watched = peakOver(service, idle, escaped, note);
    report("the same while it is watched and nobody reads", fixed(watched, 2), note);
}

}  // namespace bench
