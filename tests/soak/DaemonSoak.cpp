// daemon_soak MINUTES CLIENTS: the unmodified daemon in the box, with that many clients that read
// and write all the time. Ends with 1 when memory, descriptors or threads are not flat, when an
// answer was wrong or lost, or when the daemon does not stop in order.

#include "tests/soak/FlatCheck.h"
#include "tests/support/Box.h"
#include "tests/support/Child.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TrClient.h"

#include <atomic>
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
const std::string kConfig = "Device.Services.STBService.1.X_Kelm.Config.";

struct Counts {
    std::atomic<std::size_t> calls{0};
    std::atomic<std::size_t> mistakes{0};
};

/// A client that writes one parameter which is its alone; the surplus ones only read.
class Talker {
  public:
    Talker(const std::string& bus, std::size_t number, Counts& counts)
        : client_(bus), number_(number), counts_(counts) {}

    void talkOnce() {
        static const std::vector<std::string> own{"UpdateType", "UpdateServer", "TimeZone",
                                                  "ProvisionServer"};
        expect(client_.getValue("Device.DeviceInfo.Manufacturer").text == "KELM");
        expect(client_.getValue("Device.IP.Interface.1.Name").text == "eth0");
        expect(!client_.getValue("Device.DeviceInfo.DeviceLog").text.empty());
        expect(client_.checkValueChange().ok);
        if (round_ % 100 == 0) expect(client_.updateNotifTable().ok);
        if (round_ % 20 == 0) readTree();
        if (number_ < own.size()) write(kConfig + own[number_]);
        ++round_;
    }

  private:
    void expect(bool isRight) {
        ++counts_.calls;
        if (!isRight) ++counts_.mistakes;
    }
    void readTree() {
        const auto list = client_.listParametersOnly().list;
        expect(!list.empty());
        for (const std::string& address : list)
            if (address.find("ProvisioningCode") == std::string::npos)
                expect(client_.getValue(address).ok);
    }
    void write(const std::string& address) {
        const std::string mine = std::to_string(number_) + "/" + std::to_string(round_);
        expect(client_.set(address, mine).ok);
        expect(client_.getValue(address).text == mine);
    }

    TrClient client_;
    const std::size_t number_;
    Counts& counts_;
    std::size_t round_ = 0;
};

void talk(const std::string& bus, std::size_t number, Counts& counts,
          const std::atomic<bool>& done) {
    Talker talker(bus, number, counts);
    while (!done) {
        talker.talkOnce();
        std::this_thread::sleep_for(milliseconds(10));
    }
}

// A log that grows and is rotated, as syslogd does it; the same sizes again and again.
void writeLog(const std::atomic<bool>& done) {
    for (std::size_t line = 0; !done; ++line) {
        if (line % 2000 == 0) {
            std::rename("/tmp/syslog", "/tmp/syslog.0");
            box::writeFile("/tmp/syslog", "");
        }
        std::ofstream("/tmp/syslog", std::ios::app) << "line " << line << " of the log\n";
        std::this_thread::sleep_for(milliseconds(10));
    }
}

bool run(Child& daemon, const std::string& bus, double minutes, std::size_t clients) {
    Counts counts;
    std::atomic<bool> done{false};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < clients; ++i)
        threads.emplace_back([&, i] { talk(bus, i, counts, done); });
    threads.emplace_back([&] { writeLog(done); });
    FlatCheck check("seconds");
    const auto start = steady_clock::now();
    for (int sample = 1; sample <= kSamples && daemon.isRunning(); ++sample) {
        const auto at = milliseconds(static_cast<long long>(minutes * 60'000 * sample / kSamples));
        std::this_thread::sleep_until(start + at);
        check.add(
            static_cast<std::size_t>(at.count() / 1000), quietVitalsOf(daemon.pid()),
            std::to_string(counts.calls) + " calls, " + std::to_string(counts.mistakes) + " wrong");
    }
    done = true;
    for (std::thread& thread : threads) thread.join();
    const bool isRight = counts.mistakes == 0 && counts.calls > 0;
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
    box::writeFile(
        "/tmp/.easycwmp_notif_param_value",
        R"({ "parameter": "Device.DeviceInfo.UpTime", "value": "", "notification": "2" })"
        "\n");
    const PrivateBus bus;
    Child daemon({KELM_TRD_PROGRAM}, "/tmp/daemon-output");
    TrClient client(bus.address());
    const bool isUp = box::waitUntil(
        [&] { return !client.getValue("Device.DeviceInfo.DeviceLog").text.empty(); });
    const bool isRight = isUp && run(daemon, bus.address(), minutes, clients);
    return stop(daemon) && isRight ? 0 : 1;
}
