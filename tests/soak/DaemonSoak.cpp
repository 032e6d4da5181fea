// daemon_soak MINUTES CLIENTS: the unmodified daemon in the box, with that many clients that read
// and write all the time. Ends with 1 when memory, descriptors or threads are not flat, when an
// answer was wrong or lost, or when the daemon does not stop in order.

#include "tests/soak/FlatCheck.h"
#include "tests/support/Box.h"
#include "tests/support/Child.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Repeating.h"
#include "tests/support/Talker.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr int kSamples = 20;
// A log that grows and is rotated, as syslogd does it; the same sizes again and again.
void writeLogLine(std::size_t line) {
    if (line % 2000 == 0) {
        std::rename("/tmp/syslog", "/tmp/syslog.0");
        box::writeFile("/tmp/syslog", "");
    }
    std::ofstream("/tmp/syslog", std::ios::app) << "line " << line << " of the log\n";
}

/// What all of them have counted so far.
std::size_t sumOf(const std::vector<std::unique_ptr<Talker>>& talkers,
                  std::size_t (Talker::*count)() const) {
    std::size_t sum = 0;
    for (const auto& talker : talkers) sum += (talker.get()->*count)();
    return sum;
}

bool run(Child& daemon, const std::string& bus, double minutes, std::size_t clients) {
    std::vector<std::unique_ptr<Talker>> talkers;
    for (std::size_t i = 0; i < clients; ++i) talkers.push_back(std::make_unique<Talker>(bus, i));
    std::vector<std::unique_ptr<Repeating>> talks;
    for (auto& talker : talkers)
        talks.push_back(
            std::make_unique<Repeating>([&talker] { talker->talkOnce(); }, milliseconds(10)));
    const Repeating log([line = std::size_t{0}]() mutable { writeLogLine(line++); },
                        milliseconds(10));
    FlatCheck check("seconds");
    const auto start = steady_clock::now();
    for (int sample = 1; sample <= kSamples && daemon.isRunning(); ++sample) {
        const auto at = milliseconds(static_cast<long long>(minutes * 60'000 * sample / kSamples));
        std::this_thread::sleep_until(start + at);
        check.add(static_cast<std::size_t>(at.count() / 1000), quietVitalsOf(daemon.pid()),
                  std::to_string(sumOf(talkers, &Talker::calls)) + " calls, " +
                      std::to_string(sumOf(talkers, &Talker::mistakes)) + " wrong");
    }
    talks.clear();
    const bool isRight =
        sumOf(talkers, &Talker::mistakes) == 0 && sumOf(talkers, &Talker::calls) > 0;
    if (!isRight) std::printf("answers were wrong or lost\n");
    return check.isFlat() && isRight;
}

bool stop(Child& daemon) {
    daemon.send(SIGINT);
    const auto end = daemon.waitForEnd();
    const bool isOrderly = end && *end == ExitStatus{};
    if (!isOrderly) std::printf("the daemon did not stop in order\n%s", daemon.output().c_str());
    return isOrderly;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const double minutes = argumentCount > 1 ? std::atof(arguments[1]) : 30;
    const std::size_t clients = argumentCount > 2 ? std::strtoul(arguments[2], nullptr, 10) : 4;
    box::writeNotificationFile({"Device.DeviceInfo.UpTime"});
    const PrivateBus bus;
    Child daemon({KELM_TRD_PROGRAM}, "/tmp/daemon-output");
    TrClient client(bus.address());
    const bool isRight = waitForFirstCycle(client) && run(daemon, bus.address(), minutes, clients);
    return stop(daemon) && isRight ? 0 : 1;
}
