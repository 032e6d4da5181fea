// SIGINT at random moments of everything that the other fault tables do.

#include "tests/box/DaemonTest.h"
#include "tests/box/FaultyFiles.h"
#include "tests/box/Shim.h"
#include "tests/box/SystemFaults.h"
#include "tests/box/Vitals.h"
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
#include <ostream>
#include <random>
#include <stdexcept>
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
constexpr int kManyInterfaces = 200;

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

/// What a round's disturbance has to work with.
struct Round {
    Random& random;
    PrivateBus& bus;
    pid_t daemon;
};

/// Goes on until it is dropped.
using Disturbance = std::shared_ptr<void>;

struct Row {
    const char* name;
    /// What the daemon meets from its start.
    std::function<Disturbance(Random&)> beforeStart = {};
    /// What a daemon that answers meets; without it SIGINT may come as soon as the process exists.
    std::function<Disturbance(const Round&)> whenUp = {};
    bool isShimmed = false;
    /// Both the status of an orderly stop and this one are good.
    int otherStatus = 0;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

/// A client that does not wait long for a daemon that may be gone.
std::shared_ptr<TrClient> hastyClient(const std::string& bus) {
    auto client = std::make_shared<TrClient>(bus);
    client->setTimeout(milliseconds(200));
    return client;
}

Disturbance all(std::vector<Disturbance> parts) {
    return std::make_shared<std::vector<Disturbance>>(std::move(parts));
}

// Drops the disturbance by an action.
template <typename Action>
Disturbance until(Action action) {
    return {nullptr, [action = std::move(action)](void*) mutable { action(); }};
}

constexpr const char* kCommands[] = {"uci", "ubus", "iw", "ps", "netstat", "sysctl", "chipid_tool"};

Disturbance repairedCommands() {
    return until([] {
        for (const char* command : kCommands) box::setFault(command, "");
    });
}

Disturbance failingCommands(Random& random) {
    static constexpr const char* kFaults[] = {
        "",     "exit 1", "silent", "garbage",      "flood",
        "line", "noeol",  "slow 1", "closeearly 1", "background 1"};
    for (const char* command : kCommands) box::setFault(command, anyOf(kFaults, random));
    return repairedCommands();
}

// One of those that every cycle runs; the watchdog that kills it comes late.
Disturbance hangingCommand(const Round& round) {
    box::setFault(anyOf(std::vector<const char*>{"iw", "ps", "netstat", "ubus"}, round.random),
                  "hang");
    auto watchdog = std::make_shared<Repeating>(
        [daemon = round.daemon] { faults::killHangingCommands(daemon); }, seconds(1));
    return all({watchdog, repairedCommands()});
}

Disturbance slowUbus(Random&) {
    box::setFault("ubus", "slow 1");
    return repairedCommands();
}

Disturbance failingFiles(Random& random) {
    std::vector<Disturbance> spoiled;
    for (const FaultyFile& file : faultyFiles()) {
        // The file of the settings that the writing client checks is for the full disk.
        if (random() % 2 == 0 || std::string(file.path) == kZoneFile) continue;
        const FileFailing& failing = anyOf(fileFailings(), random);
        if (!isPossible(file, failing)) continue;
        spoiled.push_back(std::make_shared<SpoiledFile>(file, failing));
    }
    return all(std::move(spoiled));
}

Disturbance callsInFlight(const Round& round) {
    return std::make_shared<Repeating>([client = hastyClient(round.bus.address())] {
        std::vector<TrClient::Pending> calls;
        for (int i = 0; i < 500; ++i) calls.push_back(client->sendGetValue(kUpTime));
        client->getValue(kCode);
    });
}

Disturbance busyReaders(const Round& round) {
    std::vector<Disturbance> readers;
    for (int i = 0; i < 4; ++i) {
        readers.push_back(std::make_shared<Repeating>([client = hastyClient(round.bus.address())] {
            for (const std::string& address : client->listParametersOnly().list)
                if (!client->getValue(address).ok) return;
        }));
    }
    return all(std::move(readers));
}

Disturbance clientThatNeverReads(const Round& round) {
    return std::make_shared<faults::ClientThatNeverReads>(round.bus.address());
}

Disturbance rewrittenNotificationFile(const Round& round) {
    auto file = std::make_shared<faults::RewrittenNotificationFile>();
    auto reader = std::make_shared<Repeating>([client = hastyClient(round.bus.address())] {
        client->updateNotifTable();
        client->checkValueChange();
    });
    return all({file, reader});
}

// Gone at a random moment, before or after SIGINT; there again for the next round.
Disturbance busThatGoes(const Round& round) {
    auto killer = std::make_shared<std::thread>([&bus = round.bus, delay = anyDelay(round.random)] {
        std::this_thread::sleep_for(delay);
        bus.kill();
    });
    return until([killer, &bus = round.bus] {
        killer->join();
        bus.start();
    });
}

Disturbance noBus(Random&) {
    const std::string address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus", 1);
    return until([address] { setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1); });
}

// Waits until the kernel's memory figures have been read, once at the start: without them the
// daemon ends.
void waitForFirstFigures(const Round& round) {
    TrClient client(round.bus.address());
    const auto areThere = [&] {
        return !client.getValue("Device.DeviceInfo.MemoryStatus.Total").text.empty();
    };
    if (!box::waitUntil(areThere, kDeadline)) throw std::runtime_error("no figures");
}

Disturbance fewDescriptors(const Round& round) {
    waitForFirstFigures(round);
    faults::setLimit(round.daemon, RLIMIT_NOFILE, 3 + round.random() % 12);
    return {};
}

Disturbance littleMemory(const Round& round) {
    faults::setLimit(round.daemon, RLIMIT_AS,
                     faults::addressSpaceOf(round.daemon) + round.random() % (8U << 20));
    const std::string log = box::readFile("/tmp/syslog");
    box::writeFile("/tmp/syslog", std::string(10U << 20, 'x'));
    return until([log] { box::writeFile("/tmp/syslog", log); });
}

Disturbance noProcesses(const Round&) {
    shim::set("no-processes", "");
    return until([] { shim::clear("no-processes"); });
}

Disturbance noInterfaces(const Round&) {
    shim::set("no-interfaces", "");
    return until([] { shim::clear("no-interfaces"); });
}

Disturbance steppedClock(const Round& round) {
    auto steps = std::make_shared<Repeating>([random = Random(round.random())]() mutable {
        static constexpr const char* kOffsets[] = {"-3600", "0", "31536000", "-60", "5"};
        shim::set("clock", anyOf(kOffsets, random));
        std::this_thread::sleep_for(milliseconds(random() % 500));
    });
    return until([steps]() mutable {
        steps.reset();
        shim::clear("clock");
    });
}

// Some hundreds, some of which come and go.
Disturbance manyInterfaces(const Round&) {
    faults::addInterfaces(kManyInterfaces);
    auto flapping = std::make_shared<Repeating>([] {
        faults::removeInterfaces(20);
        faults::addInterfaces(20);
    });
    return until([flapping]() mutable {
        flapping.reset();
        faults::removeInterfaces(kManyInterfaces);
    });
}

Disturbance fullDisk(const Round& round) {
    if (round.random() % 2 == 0) {
        faults::fillSettings();
        return until(faults::emptySettings);
    }
    faults::setSettingsReadOnly(true);
    return until([] { faults::setSettingsReadOnly(false); });
}

std::vector<Row> rows() {
    return {
        {"Commands", failingCommands},
        {"CommandsThatHang", {}, hangingCommand},
        {"ASlowUbus", slowUbus},
        {"Files", failingFiles},
        {"CallsInFlight", {}, callsInFlight},
        {"BusyReaders", {}, busyReaders},
        {"AClientThatNeverReads", {}, clientThatNeverReads},
        {"TheNotificationFileBeingRewritten", {}, rewrittenNotificationFile},
        {"ABusThatGoes", {}, busThatGoes, false, 1},
        {"NoBus", noBus},
        {"NoProcesses", {}, noProcesses, true},
        {"NoInterfaces", {}, noInterfaces, true},
        {"ClockSteps", {}, steppedClock, true},
        {"HundredsOfInterfaces", {}, manyInterfaces},
        {"AFullDisk", {}, fullDisk},
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
        mountSettings();
        // The up time changes in every cycle, so every cycle runs ubus.
        box::writeFile(box::kNotificationFile, change(kUpTime, "") + "{ half a li");
        startBus();
    }

    void runRounds() {
        for (int i = 0; i < kRounds && !HasFailure(); ++i) {
            SCOPED_TRACE("seed " + std::to_string(seed_) + ", round " + std::to_string(i));
            runARound();
        }
    }

  private:
    void runARound() {
        const Row& row = GetParam();
        const std::size_t processes = processCount();
        Disturbance early = row.beforeStart ? row.beforeStart(random_) : Disturbance();
        launch(row.isShimmed ? shim::environment() : Child::Environment{});
        if (row.whenUp) waitForFirstAnswer();
        if (HasFatalFailure()) return;
        Disturbance late = row.whenUp ? row.whenUp({random_, bus(), daemon().pid()}) : early;
        auto writer = std::make_unique<Repeating>(
            [this, client = hastyClient(bus().address())] { write(*client); });
        std::this_thread::sleep_for(anyDelay(random_));
        daemon().send(SIGINT);
        daemon().waitForEnd(kDeadline);
        writer.reset();
        late.reset();
        early.reset();
        checkEnd();
        checkLeavings(processes);
    }

    // The same files on a disk that is easily filled.
    void mountSettings() {
        names_ = namesIn("/var/kelm");
        std::vector<std::string> contents;
        for (const std::string& name : names_) contents.push_back(box::readFile(name));
        faults::mountSettings();
        for (std::size_t i = 0; i < names_.size(); ++i) box::writeFile(names_[i], contents[i]);
        box::writeFile(kZoneFile, kZones[0]);
    }

    void waitForFirstAnswer() {
        connect();
        const auto answers = [this] { return client().getValue(kUpTime).ok; };
        ASSERT_TRUE(box::waitUntil([&] { return answers() || !daemon().isRunning(); }, kDeadline))
            << daemon().output();
        ASSERT_TRUE(daemon().isRunning()) << *daemon().waitForEnd(milliseconds(0)) << "\n"
                                          << daemon().output();
    }

    static void write(TrClient& client) {
        client.updateNotifTable();
        for (const char* zone : kZones) client.set(kZone, zone);
        client.set(kCode, kCodeText);
        client.listAddresses();
    }

    void checkEnd() {
        const auto end = daemon().waitForEnd(milliseconds(0));
        ASSERT_TRUE(end.has_value()) << "hangs\n" << daemon().output();
        if (*end == ExitStatus{GetParam().otherStatus, 0}) return;
        // Before main() has taken hold of the signal, its default action ends the process.
        if (!GetParam().whenUp && *end == ExitStatus{0, SIGINT}) return;
        EXPECT_EQ(*end, ExitStatus{}) << daemon().output();
    }

    // No process of the daemon's, no half of a setting, no file that was not there.
    void checkLeavings(std::size_t processes) const {
        EXPECT_TRUE(box::waitUntil([&] { return processCount() <= processes; }, kDeadline));
        EXPECT_NE(std::find(std::begin(kZones), std::end(kZones), box::readFile(kZoneFile)),
                  std::end(kZones))
            << box::readFile(kZoneFile);
        EXPECT_EQ(namesIn("/var/kelm"), names_);
        const auto code = box::readFile(kStagedCode);
        EXPECT_TRUE(code.empty() || code == kCodeText + "\n") << code;
    }

    std::vector<std::string> names_;
    const unsigned seed_ = std::random_device{}();
    Random random_{seed_};
};

TEST_P(InterruptFaultTest, EndsTheDaemonInOrder) {
    runRounds();
}

INSTANTIATE_TEST_SUITE_P(Interrupts, InterruptFaultTest, ::testing::ValuesIn(rows()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
