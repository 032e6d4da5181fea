// What the clients cost: the back end of the CWMP client and trctl, beside a plain client and a
// bridge of shell.

#include "bench/Table.h"
#include "bench/cwmp/Run.h"
#include "bench/whole/Fleet.h"
#include "tests/support/Box.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace bench {

namespace {

constexpr char kBranch[] = "Device.Services.STBService.1.Bench.";
constexpr char kPrompts[] = "easycwmp>\n";
constexpr int kRounds = 15;
constexpr int kWatched = 1'000;
constexpr int kMany = 10'000;

std::string group(const std::string& command) {
    return command + "\n{ \"command\": \"end\" }\n";
}

std::string get(const std::string& path) {
    return group(R"({ "command": "get", "class": "value", "parameter": ")" + path + "\" }");
}

// The answer to one group stands between the first prompt and this.
Run backEnd(const std::string& input, pid_t daemon, const char* lastAnswer) {
    return measure({CWMP_PROGRAM, "--json-input"}, input, std::string(lastAnswer) + kPrompts,
                   daemon);
}

/// Of several rounds in turn the least disturbed.
struct Best {
    double cpu = 1e18, wall = 1e18;
    std::uint64_t peakKilobytes = 0;
    std::size_t answerBytes = 0;

    void add(const Run& run) {
        cpu = std::min(cpu, run.cpu);
        wall = std::min(wall, run.wall);
        peakKilobytes = std::max(peakKilobytes, run.peakKilobytes);
        answerBytes = run.answer.size();
    }
};

std::string both(double one, double other) {
    return fixed(one / 1000, 1) + " ms / " + fixed(other / 1000, 1) + " ms";
}

void fillTo(const Service& daemon, int first, int last) {
    for (int i = first; i < last; ++i)
        if (daemon.client->getWritable(kBranch + std::to_string(i) + ".Value").text != "0")
            fail("no new entry");
}

Run program(const std::vector<std::string>& command, pid_t daemon) {
    return measure(command, "", "", daemon);
}

void reportTree(const Service& daemon) {
    Best ours, plain, shell, trctl;
    for (int round = 0; round < kRounds; ++round) {
        ours.add(backEnd(get("Device."), daemon.pid(), "}\n"));
        plain.add(program({PLAIN_PROGRAM}, daemon.pid()));
        trctl.add(program({TRCTL_PROGRAM, "get", "Device."}, daemon.pid()));
    }
    shell.add(program({"/bin/sh", SHELL_BRIDGE}, daemon.pid()));
    report("trctl get Device. / plain libdbus client, CPU", fixed(trctl.cpu / plain.cpu, 2),
           both(trctl.cpu, plain.cpu));
    reportAtMost("get value Device. / plain libdbus client, CPU", ours.cpu / plain.cpu, 1.5,
                 both(ours.cpu, plain.cpu));
    reportAtMost(
        "the same / bridge of shell, time, in thousandths", 1000 * ours.wall / shell.wall, 40,
        both(ours.wall, shell.wall) + ": " + fixed(shell.wall / ours.wall, 0) + " times as fast");
}

void reportWatched(const Service& daemon) {
    box::writeFile("/run/kelm-box/uci/config/easycwmp/@notifications[0]/.type", "notifications\n");
    box::writeFile("/run/kelm-box/uci/config/easycwmp/@notifications[0]/passive.list",
                   std::string(kBranch) + "\n");
    backEnd(group(R"({ "command": "update_value_change" })"), daemon.pid(), kPrompts);
    Best check, gets;
    for (int round = 0; round < kRounds; ++round) {
        check.add(backEnd(group(R"({ "command": "check_value_change" })"), daemon.pid(), kPrompts));
        gets.add(backEnd(get(kBranch), daemon.pid(), "}\n"));
    }
    reportAtMost("check of 1,000 watched / the 1,000 gets, CPU", check.cpu / gets.cpu, 1.2,
                 both(check.cpu, gets.cpu) + ", without uci");
}

void reportMany(const Service& daemon) {
    Best few, many, one, plain, trctl;
    for (int round = 0; round < kRounds; ++round)
        few.add(backEnd(get(kBranch), daemon.pid(), "}\n"));
    fillTo(daemon, kMany + kWatched, 2 * kMany);
    for (int round = 0; round < kRounds; ++round) {
        many.add(backEnd(get(kBranch), daemon.pid(), "}\n"));
        one.add(backEnd(get("Device.ManagementServer.URL"), daemon.pid(), "}\n"));
        plain.add(program({PLAIN_PROGRAM}, daemon.pid()));
        trctl.add(program({TRCTL_PROGRAM, "get", "Device."}, daemon.pid()));
    }
    report("10,000 parameters: trctl get Device. / plain libdbus client, CPU",
           fixed(trctl.cpu / plain.cpu, 2), both(trctl.cpu, plain.cpu));
    reportAtMost("10,000 parameters: CPU each / of 1,000", many.cpu / few.cpu / (kMany / kWatched),
                 1.1, both(many.cpu, few.cpu));
    const double above = static_cast<double>(many.peakKilobytes - one.peakKilobytes) * 1024;
    reportAtMost(
        "the same: peak memory above a small answer / answer's size",
        above / static_cast<double>(many.answerBytes), 3,
        fixed(above / 1024, 0) + " KiB / " + std::to_string(many.answerBytes / 1024) + " KiB");
}

}  // namespace

}  // namespace bench

int main() {
    const PrivateBus bus;
    const bench::Service daemon = bench::startDaemon(bus, "/tmp/daemon-output");
    bench::reportTree(daemon);
    bench::fillTo(daemon, bench::kMany, bench::kMany + bench::kWatched);
    bench::reportWatched(daemon);
    bench::reportMany(daemon);
}
