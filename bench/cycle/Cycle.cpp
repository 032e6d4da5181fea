#include "bench/LogText.h"
#include "bench/Table.h"
#include "bench/cycle/Probes.h"
#include "daemon/Worker.h"
#include "model/Storage.h"
#include "stb/src/common/JsonEscape.h"
#include "tests/support/Box.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <sys/resource.h>

namespace {

constexpr int kRounds = 30;
constexpr std::size_t kLogBytes = std::size_t{16} << 20;
constexpr char kLogFile[] = "/tmp/syslog";

/// CPU time, user and system, in microseconds.
double cpuOf(int who) {
    rusage usage{};
    getrusage(who, &usage);
    const auto microseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
    };
    return microseconds(usage.ru_utime) + microseconds(usage.ru_stime);
}

double ownCpu() {
    return cpuOf(RUSAGE_SELF);
}

double allCpu() {
    return cpuOf(RUSAGE_SELF) + cpuOf(RUSAGE_CHILDREN);
}

double costOf(double (*cpu)(), const std::function<void()>& work) {
    const double before = cpu();
    work();
    return cpu() - before;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// The commands of one cycle, each from its own shell, as any program starts them.
void writeScript(const std::string& path) {
    box::writeFile(path,
                   "sh -c 'iw wlan0 link' >/dev/null\n"
                   "sh -c 'netstat -aun' >/dev/null\n"
                   "sh -c 'ps | wc -l' >/dev/null\n"
                   "sh -c 'ps | wc -l' >/dev/null\n");
}

void runScript(const char* path) {
    const std::string command = std::string("exec sh ") + path;
    if (std::system(command.c_str()) != 0) std::exit(EXIT_FAILURE);
}

void reportCycle(TR::Worker& worker) {
    constexpr char kScript[] = "/tmp/commands.sh";
    writeScript(kScript);
    std::vector<double> whole, own, script, ratios, locked;
    for (int round = 0; round < kRounds; ++round) {
        bench::reset();
        const double ownBefore = ownCpu();
        whole.push_back(costOf(allCpu, [&] { worker.runCycle(); }));
        own.push_back(ownCpu() - ownBefore);
        const auto beyond =
            bench::probes().locked - bench::probes().commands - bench::probes().logs;
        locked.push_back(static_cast<double>(beyond.count()) / 1000);
        script.push_back(costOf(allCpu, [&] { runScript(kScript); }));
    }
    bench::reportAtMost("a whole cycle's CPU / that of its commands run by a script",
                        median(whole) / median(script), 1.05,
                        bench::fixed(median(whole) / 1000, 2) + " ms / " +
                            bench::fixed(median(script) / 1000, 2) + " ms; the daemon's own part " +
                            bench::fixed(median(own) / 1000, 2) + " ms, forks included");
    bench::report("store mutex held per cycle beyond commands and log reading",
                  bench::fixed(median(locked), 0) + " us", "median of " + std::to_string(kRounds));
}

double memcpyCost(const std::string& text) {
    std::vector<char> target(text.size());
    std::vector<double> costs;
    for (int round = 0; round < kRounds; ++round) {
        costs.push_back(costOf(
            ownCpu,
            [&] {
                std::memcpy(target.data(), text.data(), text.size());
                asm volatile("" : : "r"(target.data()) : "memory");
            }));
    }
    return median(costs);
}

/// Every cycle finds a log that has grown by a line, as it does in life.
double cycleCost(TR::Worker& worker, std::string log) {
    std::vector<double> costs;
    for (int round = 0; round < kRounds / 2; ++round) {
        if (!log.empty()) log += "Jan  1 12:00:01 stb daemon.info player[412]: one more\n";
        if (!log.empty()) box::writeFile(kLogFile, log);
        costs.push_back(costOf(ownCpu, [&] { worker.runCycle(); }));
    }
    return median(costs);
}

void reportLog(TR::Worker& worker) {
    const std::string log = bench::logText(kLogBytes);
    const double without = cycleCost(worker, "");
    const double with = cycleCost(worker, log);
    const double copy = memcpyCost(TR::Utils::escapeForJson(log));
    bench::report(
        "DeviceLog of 16 MiB: its cycle cost / memcpy of the escaped text",
        bench::fixed((with - without) / copy, 1),
        bench::fixed((with - without) / 1000, 1) + " ms / " + bench::fixed(copy / 1000, 1) + " ms");
}

}  // namespace

// trd-cycle: what one refresh costs, in the box. Single-threaded, so that every wait is its own.
int main() {
    std::remove(kLogFile);
    std::remove("/tmp/syslog.0");
    TR::Storage storage;
    TR::Worker worker(&storage);  // not started: its steps are taken here
    worker.createProviders();
    worker.initProviders();
    worker.runCycle();
    reportCycle(worker);
    reportLog(worker);
}
