// SIGINT at random moments of everything that the other fault tables do.

#include "tests/box/DaemonTest.h"
#include "tests/support/FaultyFiles.h"
#include "tests/support/Repeating.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using std::chrono::seconds;
using Random = std::mt19937;

constexpr int kRounds = 8;
constexpr milliseconds kLongestDelay{6000};  // more than a cycle and its pause
// Cycles under several faults at once last long, with sanitizers and emulators longer.
constexpr seconds kDeadline{300};
constexpr int kManyPairs = 100;  // of interfaces
// Of what is done again and again. SIGINT still finds it under way in one round of two or three,
// and the tests beside this one get their share of the processor.
constexpr milliseconds kPause{50};

constexpr char kUpTime[] = "Device.DeviceInfo.UpTime";
constexpr char kCode[] = "Device.DeviceInfo.ProvisioningCode";
const std::string kCodeText = "code 17";
constexpr char kStagedCode[] = "/run/kelm-box/uci/staged/easycwmp/@local[0]/provisioning_code";
constexpr char kZone[] = "Device.Services.STBService.1.X_Kelm.Config.TimeZone";
constexpr char kZoneFile[] = "/var/kelm/TZ";
constexpr const char* kZones[] = {"MSK-3", "CET-1CEST,M3.5.0,M10.5.0/3"};

milliseconds anyDelay(Random& random) {
    return milliseconds(random() % static_cast<unsigned>(kLongestDelay.count()));
}

template <typename Range>
const auto& anyOf(const Range& range, Random& random) {
    return *std::next(std::begin(range), static_cast<std::ptrdiff_t>(random() % std::size(range)));
}

/// What a round's fault has to work with.
struct Round {
    Random& random;
    PrivateBus& bus;
    pid_t daemon;
};

struct Row {
    const char* name;
    /// What the daemon meets from its start.
    std::function<Fault(Random&)> beforeStart = {};
    /// What a daemon that answers meets; without it SIGINT may come as soon as the process exists.
    std::function<Fault(const Round&)> whenUp = {};
    bool isShimmed = false;
    /// Both the status of an orderly stop and this one are good.
    int otherStatus = 0;
    /// The settings are on a disk that is easily filled. Then nothing else may write there: the
    /// room of a setting that is being replaced could be taken, and the setting be lost.
    bool isDiskSmall = false;
};

/// A client that does not wait long for a daemon that may be gone.
std::shared_ptr<TrClient> hastyClient(const std::string& bus) {
    auto client = std::make_shared<TrClient>(bus);
    client->setTimeout(milliseconds(200));
    return client;
}

Fault failingCommands(Random& random) {
    static constexpr const char* kFaults[] = {
        "",     "exit 1", "silent", "garbage",      "flood",
        "line", "noeol",  "slow 1", "closeearly 1", "background 1"};
    std::vector<Fault> all;
    for (const char* name : {"uci", "ubus", "iw", "ps", "netstat", "sysctl", "chipid_tool"})
        all.push_back(faults::command(name, anyOf(kFaults, random)));
    return faults::all(all);
}

// One of those that every cycle runs; the watchdog that kills it comes late.
Fault hangingCommand(const Round& round) {
    static constexpr const char* kCommands[] = {"iw", "ps", "netstat", "ubus"};
    return faults::all(
        {faults::command(anyOf(kCommands, round.random), "hang"), faults::watchdog(seconds(1))});
}

Fault failingFiles(Random& random) {
    std::vector<Fault> all;
    for (const FaultyFile& file : faultyFiles()) {
        // The file of the settings that the writing client checks is for the full disk.
        if (random() % 2 == 0 || std::string(file.path) == kZoneFile) continue;
        all.push_back(spoil(file, anyOf(fileFailings(), random)));
    }
    return faults::all(all);
}

Fault callsInFlight(const Round& round) {
    const auto call = [client = hastyClient(round.bus.address())] {
        std::vector<TrClient::Pending> calls;
        for (int i = 0; i < 500; ++i) calls.push_back(client->sendGetValue(kUpTime));
        client->getValue(kCode);
    };
    return std::make_shared<Repeating>(call, kPause);
}

Fault busyReaders(const Round& round) {
    std::vector<Fault> readers;
    for (int i = 0; i < 2; ++i) {
        const auto readAll = [client = hastyClient(round.bus.address())] {
            for (const std::string& address : client->listParametersOnly().list)
                if (!client->getValue(address).ok) return;
        };
        readers.push_back(std::make_shared<Repeating>(readAll, kPause));
    }
    return faults::all(readers);
}

Fault rewrittenNotificationFile(const Round& round) {
    const auto read = [client = hastyClient(round.bus.address())] {
        client->updateNotifTable();
        client->checkValueChange();
    };
    return faults::all(
        {faults::rewrittenNotificationFile(), std::make_shared<Repeating>(read, kPause)});
}

// Gone at a random moment, before or after SIGINT; there again for the next round.
Fault busThatGoes(const Round& round) {
    auto killer = std::make_shared<std::thread>([&bus = round.bus, delay = anyDelay(round.random)] {
        std::this_thread::sleep_for(delay);
        bus.kill();
    });
    return faults::until([killer, &bus = round.bus] {
        killer->join();
        bus.start();
    });
}

Fault noBus(Random&) {
    const std::string address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus", 1);
    return faults::until([address] { setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1); });
}

// Once the kernel's memory figures have been read at the start: without them the daemon ends.
Fault fewDescriptors(const Round& round) {
    TrClient client(round.bus.address());
    const auto figuresAreThere = [&] {
        return !client.getValue("Device.DeviceInfo.MemoryStatus.Total").text.empty();
    };
    faults::require(box::waitUntil(figuresAreThere, kDeadline), "no figures");
    return faults::limit(round.daemon, RLIMIT_NOFILE, 3 + round.random() % 12);
}

Fault littleMemory(const Round& round) {
    const rlim_t bytes = faults::addressSpaceOf(round.daemon) + round.random() % (8U << 20);
    const std::string log = box::readFile("/tmp/syslog");
    box::writeFile("/tmp/syslog", std::string(10U << 20, 'x'));
    return faults::all({faults::limit(round.daemon, RLIMIT_AS, bytes),
                        faults::until([log] { box::writeFile("/tmp/syslog", log); })});
}

Fault steppedClock(const Round& round) {
    return std::make_shared<Repeating>([random = Random(round.random())]() mutable {
        static constexpr const char* kOffsets[] = {"-3600", "0", "31536000", "-60", "5"};
        const Fault step = faults::shim("clock", anyOf(kOffsets, random));
        std::this_thread::sleep_for(milliseconds(random() % 500));
    });
}

// Some hundreds, and more that come and go.
Fault manyInterfaces(const Round&) {
    const Fault many = faults::moreInterfaces(kManyPairs);
    const auto more = [many] { faults::moreInterfaces(20, 10 + kManyPairs); };
    return faults::all({many, std::make_shared<Repeating>(more, kPause)});
}

std::vector<Row> rows() {
    return {
        {"Commands", failingCommands},
        {"CommandsThatHang", {}, hangingCommand},
        {"ASlowUbus", [](Random&) { return faults::command("ubus", "slow 1"); }},
        {"Files", failingFiles},
        {"CallsInFlight", {}, callsInFlight},
        {"BusyReaders", {}, busyReaders},
        {"AClientThatNeverReads",
         {},
         [](const Round& round) {
             return std::make_shared<faults::ClientThatNeverReads>(round.bus.address());
         }},
        {"TheNotificationFileBeingRewritten", {}, rewrittenNotificationFile},
        {"ABusThatGoes", {}, busThatGoes, false, 1},
        {"NoBus", noBus},
        {"NoProcesses", {}, [](const Round&) { return faults::shim("no-processes"); }, true},
        {"NoInterfaces", {}, [](const Round&) { return faults::shim("no-interfaces"); }, true},
        {"ClockSteps", {}, steppedClock, true},
        {"HundredsOfInterfaces", {}, manyInterfaces},
        {"AFullDisk",
         {},
         [](const Round& round) {
             return round.random() % 2 == 0 ? faults::fullSettings() : faults::readOnlySettings();
         },
         false,
         0,
         true},
        {"FewDescriptors", {}, fewDescriptors},
        {"LittleMemory", {}, littleMemory},
    };
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path());
    std::sort(names.begin(), names.end());
    return names;
}

class InterruptFaultTest : public DaemonTest, public ::testing::WithParamInterface<Row> {
  protected:
    void SetUp() override {
        deadline_ = kDeadline;
        names_ = namesIn("/var/kelm");
        if (GetParam().isDiskSmall) mountSettings();
        box::writeFile(kZoneFile, kZones[0]);
        // The up time changes in every cycle, so every cycle runs ubus.
        box::writeFile(box::kNotificationFile, change(kUpTime, "") + "{ half a li");
        startBus();
    }

    void runARound() {
        const Row& row = GetParam();
        const std::size_t processes = processCount();
        Fault early = row.beforeStart ? row.beforeStart(random_) : nullptr;
        launch(row.isShimmed ? faults::shimEnvironment() : Child::Environment{});
        if (row.whenUp) ASSERT_NO_FATAL_FAILURE(waitForFirstAnswer());
        Fault late = row.whenUp ? row.whenUp({random_, bus(), daemon().pid()}) : nullptr;
        auto writer = std::make_unique<Repeating>(
            [client = hastyClient(bus().address())] { write(*client); }, kPause);
        std::this_thread::sleep_for(anyDelay(random_));
        daemon().send(SIGINT);
        daemon().waitForEnd(kDeadline);
        writer.reset();
        late.reset();
        early.reset();
        checkEnd();
        checkLeavings(processes);
    }

    const unsigned seed_ = std::random_device{}();

  private:
    // The same files.
    void mountSettings() {
        std::vector<std::string> contents;
        for (const std::string& name : names_) contents.push_back(box::readFile(name));
        faults::mountSettings();
        for (std::size_t i = 0; i < names_.size(); ++i) box::writeFile(names_[i], contents[i]);
    }

    void waitForFirstAnswer() {
        connect();
        const auto answers = [this] { return client().getValue(kUpTime).ok; };
        ASSERT_TRUE(box::waitUntil([&] { return answers() || !daemon().isRunning(); }, kDeadline));
        ASSERT_TRUE(daemon().isRunning()) << *daemon().waitForEnd(milliseconds(0));
    }

    static void write(TrClient& client) {
        client.updateNotifTable();
        for (const char* zone : kZones) client.set(kZone, zone);
        client.set(kCode, kCodeText);
        client.listAddresses();
    }

    void checkEnd() {
        const auto end = daemon().waitForEnd(milliseconds(0));
        ASSERT_TRUE(end.has_value()) << "hangs";
        if (*end == ExitStatus{GetParam().otherStatus, 0}) return;
        // Before main() has taken hold of the signal, its default action ends the process.
        if (!GetParam().whenUp && *end == ExitStatus{0, SIGINT}) return;
        EXPECT_EQ(*end, ExitStatus{});
    }

    // No process of the daemon's, no half of a setting, no file that was not there.
    void checkLeavings(std::size_t processes) const {
        EXPECT_TRUE(box::waitUntil([&] { return processCount() <= processes; }, kDeadline));
        const std::string zone = box::readFile(kZoneFile);
        EXPECT_TRUE(zone == kZones[0] || zone == kZones[1]) << zone;
        EXPECT_EQ(namesIn("/var/kelm"), names_);
        const auto code = box::readFile(kStagedCode);
        EXPECT_TRUE(code.empty() || code == kCodeText + "\n") << code;
    }

    std::vector<std::string> names_;
    Random random_{seed_};
};

TEST_P(InterruptFaultTest, EndsTheDaemonInOrder) {
    for (int i = 0; i < kRounds && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(seed_) + ", round " + std::to_string(i));
        runARound();
    }
}

INSTANTIATE_TEST_SUITE_P(Interrupts, InterruptFaultTest, ::testing::ValuesIn(rows()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
