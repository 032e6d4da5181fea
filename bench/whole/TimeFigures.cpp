#include "bench/Table.h"
#include "bench/whole/Figures.h"
#include "bench/whole/Process.h"
#include "bench/whole/Samples.h"
#include "tests/support/Box.h"

#include <csignal>
#include <cstdlib>
#include <sstream>
#include <string>

namespace bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kGroups = 9;
constexpr std::chrono::milliseconds kGroupTime{3000};
// A call of milliseconds is often interrupted on a shared core, so its p10 counts.
constexpr double kUndisturbed = 0.1;
constexpr int kCallsInRow = 20;
constexpr int kTurnsPerList = 2;

struct CallTimes {
    Samples ping, pingOfDbuscxx, otherPing, get, getOfFull, getOfDbuscxx, getOfSdbus, list,
        listOfDbuscxx, inFlight, inFlightOfDbuscxx;

    template <typename Operation>
    void forEach(Operation operation) {
        for (Samples* samples : {&ping, &pingOfDbuscxx, &otherPing, &get, &getOfFull, &getOfDbuscxx,
                                 &getOfSdbus, &list, &listOfDbuscxx, &inFlight, &inFlightOfDbuscxx})
            operation(*samples);
    }
};

/// Many calls in a row, as the CWMP client makes them. The first one finds another service's data
/// in the caches and does not count.
template <typename Call>
void callInRow(Samples& samples, Call call) {
    call();
    for (int i = 0; i < kCallsInRow; ++i) samples.add(call);
}

void callService(const Service& service, Samples& ping, Samples& get) {
    callInRow(
        ping, [&] { service.ping(); });
    callInRow(get, [&] { service.get(); });
}

void callInTurn(const Fleet& fleet, CallTimes& times, int turn) {
    callService(fleet.daemon, times.ping, times.get);
    callService(fleet.dbuscxx, times.pingOfDbuscxx, times.getOfDbuscxx);
    callService(fleet.full, times.otherPing, times.getOfFull);
    callService(fleet.sdbus, times.otherPing, times.getOfSdbus);
    times.inFlight.add([&] { fleet.daemon.getMany(); });
    times.inFlightOfDbuscxx.add([&] { fleet.dbuscxx.getMany(); });
    if (turn % kTurnsPerList == 0) {
        times.list.add([&] { fleet.full.list(kManyParameters); });
        times.listOfDbuscxx.add([&] { fleet.dbuscxx.list(kManyParameters); });
    }
}

/// False when a cycle began meanwhile.
bool sampleOnce(Fleet& fleet, CallTimes& times) {
    fleet.waitForQuiet();
    times.forEach([](Samples& samples) { samples.beginGroup(); });
    const auto end = Clock::now() + kGroupTime;
    for (int turn = 0; Clock::now() < end; ++turn) callInTurn(fleet, times, turn);
    if (!fleet.isCycleUnderWay()) return true;
    times.forEach([](Samples& samples) { samples.dropGroup(); });
    return false;
}

CallTimes sample(Fleet& fleet) {
    CallTimes times;
    int groups = 0;
    for (int attempt = 0; groups < kGroups && attempt < 3 * kGroups; ++attempt)
        if (sampleOnce(fleet, times)) ++groups;
    if (groups == 0) fail("no quiet time between two cycles");
    return times;
}

std::string both(const Samples& one, const Samples& other, double fraction) {
    return fixed(one.percentile(fraction), 1) + " us / " + fixed(other.percentile(fraction), 1) +
           " us";
}

void reportRatio(const char* figure, const Samples& one, const Samples& other, double fraction,
                 double limit) {
    reportAtMost(figure, ratio(one, other, fraction), limit, both(one, other, fraction));
}

constexpr int kCountedCalls = 5'000;

void getOften(const Fleet& fleet) {
    for (int i = 0; i < kCountedCalls; ++i) fleet.daemon.get();
}

/// The thread that serves the bus, found by its context switches, and their number for each call.
std::pair<pid_t, double> busThread(const Fleet& fleet) {
    const auto before = voluntarySwitches(fleet.daemon.pid());
    getOften(fleet);
    std::pair<pid_t, double> busiest{0, 0};
    for (const auto& [thread, count] : voluntarySwitches(fleet.daemon.pid())) {
        const double perCall = static_cast<double>(count - before.at(thread)) / kCountedCalls;
        if (perCall > busiest.second) busiest = {thread, perCall};
    }
    return busiest;
}

/// Calls of each kind that strace counted, most frequent first; the total, or none without strace.
double systemCalls(const Fleet& fleet, pid_t thread, std::string& kinds) {
    constexpr char kCounts[] = "/tmp/strace-counts";
    Child strace({"strace", "-c", "-U", "calls,name", "-S", "calls", "-o", kCounts, "-p",
                  std::to_string(thread)},
                 "/tmp/strace-output");
    if (!box::waitUntil([&] {
            return strace.output().find("attached") != std::string::npos || !strace.isRunning();
        }))
        return 0;
    getOften(fleet);
    strace.send(SIGINT);
    strace.waitForEnd();
    std::istringstream lines(box::readFile(kCounts));
    double total = 0;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        double calls = 0;
        std::string name;
        if (!(fields >> calls >> name) || name == "total" || calls < kCountedCalls / 100.0)
            continue;
        total += calls / kCountedCalls;
        kinds += name + " " + fixed(calls / kCountedCalls, 2) + ", ";
    }
    return total;
}

}  // namespace

void reportCallTimes(Fleet& fleet) {
    const CallTimes times = sample(fleet);
    reportRatio("get_value p50 / own Ping p50", times.get, times.ping, 0.5, 1.10);
    report("the libdbus-c++ reference's p50 / its own Ping p50",
           fixed(ratio(times.getOfDbuscxx, times.pingOfDbuscxx, 0.5), 2),
           both(times.getOfDbuscxx, times.pingOfDbuscxx, 0.5) + ": the binding's own share");
    reportRatio("get_value p50 / libdbus-c++ reference", times.get, times.getOfDbuscxx, 0.5, 1.04);
    reportRatio("get_value p50 / sd-bus reference", times.get, times.getOfSdbus, 0.5, 1.20);
    reportRatio("get_value p99 / Ping p99, between cycles", times.get, times.ping, 0.99, 1.3);
    reportRatio("get_value p50, 10,000 parameters / as started", times.getOfFull, times.get, 0.5,
                1.03);
    reportRatio("listAddresses of 10,000 / libdbus-c++ reference", times.list, times.listOfDbuscxx,
                kUndisturbed, 1.3);
    const double perCall = times.inFlight.percentile(kUndisturbed) / kInFlight;
    const double perCallOfDbuscxx = times.inFlightOfDbuscxx.percentile(kUndisturbed) / kInFlight;
    reportAtMost("64 calls in flight, per call / Ping p50", perCall / times.ping.p50(), 0.75,
                 fixed(perCall, 1) + " us / " + fixed(times.ping.p50(), 1) + " us");
    report("the same of the libdbus-c++ reference",
           fixed(perCallOfDbuscxx / times.pingOfDbuscxx.p50(), 2),
           fixed(perCallOfDbuscxx, 1) + " us / " + fixed(times.pingOfDbuscxx.p50(), 1) +
               " us: the binding's own share");
}

void reportKernelWork(Fleet& fleet) {
    fleet.waitForQuiet();
    const auto [thread, switches] = busThread(fleet);
    std::string kinds;
    const double calls = systemCalls(fleet, thread, kinds);
    if (calls > 0)
        reportAtMost("system calls per get_value", calls, 4.0, kinds.substr(0, kinds.size() - 2));
    else
        report("system calls per get_value", "?", "strace is not installed");
    reportAtMost("voluntary switches per get_value", switches, 1.0, "the D-Bus thread's");
}

}  // namespace bench
