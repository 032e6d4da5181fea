// Every file that the daemon reads, failing in every way that a file can.

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "tests/box/DaemonTest.h"
#include "tests/box/FaultyLife.h"

namespace {

namespace fs = std::filesystem;

struct File {
    const char* name;
    const char* path;
    bool isOfTheStart;      // read once, not in every cycle or at a call
    const char* parameter;  // what it tells of, when that stays the same from cycle to cycle
};

constexpr File kFiles[] = {
    {"UpTime", "/proc/uptime", false, nullptr},
    {"Temperature", "/sys/class/thermal/thermal_zone0/temp", false,
     "Device.DeviceInfo.TemperatureStatus.TemperatureSensor.1.Value"},
    {"Speed", "/sys/class/net/eth0/speed", false, "Device.Ethernet.Interface.1.MaxBitRate"},
    {"Duplex", "/sys/class/net/eth0/duplex", false, "Device.Ethernet.Interface.1.DuplexMode"},
    {"OperState", "/sys/class/net/eth0/operstate", false, "Device.Ethernet.Interface.1.Status"},
    {"DiscontinuityCounter", "/sys/class/tsdemux/discontinue_counter", false, nullptr},
    {"TimeZone", "/var/kelm/TZ", false, "Device.Services.STBService.1.X_Kelm.Config.TimeZone"},
    {"WiFiSettings", "/var/kelm/network.wlan0", false,
     "Device.Services.STBService.1.X_Kelm.Config.WiFiConfig.SSID"},
    {"Log", "/tmp/syslog", false, "Device.DeviceInfo.DeviceLog"},
    {"OldLog", "/tmp/syslog.0", false, "Device.DeviceInfo.DeviceLog"},
    {"NotificationFile", "/tmp/.easycwmp_notif_param_value", false, nullptr},
    {"DeviceId", "/etc/kelm_deviceid", true, nullptr},
    {"FirmwareVersion", "/etc/kelm_firmware.version", true, nullptr},
};

bool isOfTheKernel(const File& file) {
    return std::string(file.path).rfind("/proc/", 0) == 0;
}

const std::string kTenMegabytes(10U << 20, 'x');
// More than one read takes, and little to parse for a sanitized program.
const std::string kManyLines = [] {
    std::string lines;
    for (int i = 0; i < 500; ++i) lines += std::string(99, 'x') + "\n";
    return lines;
}();

std::string everyByte() {
    std::string bytes;
    for (int round = 0; round < 16; ++round) {
        for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    }
    return bytes;
}

std::string withoutTheLastLineFeed(std::string text) {
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

void bind(const std::string& source, const std::string& target) {
    if (mount(source.c_str(), target.c_str(), nullptr, MS_BIND, nullptr) != 0) {
        throw std::system_error(errno, std::generic_category(), "bind " + target);
    }
}

// Puts something in the place of the file at `path`, which is not there; `content` is what it held.
using Placing = void (*)(const std::string& path, const std::string& content);

// Reads of the own memory's first page fail, for root too.
void placeUnreadable(const std::string& path, const std::string&) {
    box::writeFile(path, "");
    bind("/proc/" + std::to_string(getpid()) + "/mem", path);
}

struct Failing {
    const char* name;  // what the file does, as the end of a sentence
    Placing place;
    Placing repeat;         // done again and again while the fault lasts
    bool isPossibleInProc;  // where there is only the bind mount of another file
};

constexpr Failing kFailings[] = {
    {"IsMissing", [](const std::string&, const std::string&) {}, nullptr, false},
    {"IsEmpty", [](const std::string& path, const std::string&) { box::writeFile(path, ""); },
     nullptr, true},
    {"IsAFolder", [](const std::string& path, const std::string&) { fs::create_directory(path); },
     nullptr, false},
    {"IsAFifo", [](const std::string& path, const std::string&) { mkfifo(path.c_str(), 0600); },
     nullptr, true},
    {"CannotBeRead", placeUnreadable, nullptr, true},
    {"HasNoFinalLineFeed",
     [](const std::string& path, const std::string& content) {
         box::writeFile(path, withoutTheLastLineFeed(content));
     },
     nullptr, true},
    {"IsBinary",
     [](const std::string& path, const std::string&) { box::writeFile(path, everyByte()); },
     nullptr, true},
    {"IsTenMegabytes",
     [](const std::string& path, const std::string&) { box::writeFile(path, kTenMegabytes); },
     nullptr, true},
    {"ChangesWhileItIsRead", box::writeFile,
     [](const std::string& path, const std::string& content) {
         box::writeFile(path, kManyLines);
         box::writeFile(path, content.substr(0, content.size() / 2));
         box::writeFile(path, content);
     },
     true},
    {"IsReplacedAgainAndAgain", box::writeFile,
     [](const std::string& path, const std::string& content) {
         box::writeFile(path + ".new", content + content);
         fs::rename(path + ".new", path);
     },
     false},
};

/// A file that fails as long as the object lives.
class Spoiled {
  public:
    Spoiled(const File& file, const Failing& failing)
        : path_(file.path),
          place_(isOfTheKernel(file) ? "/tmp/instead-of" + fs::path(file.path).filename().string()
                                     : path_),
          content_(box::readFile(path_)),
          isBound_(place_ != path_) {
        if (!isBound_) fs::rename(path_, away());
        failing.place(place_, content_);
        if (isBound_) bind(place_, path_);
        if (failing.repeat == nullptr) return;
        thread_ = std::thread([this, repeat = failing.repeat] {
            while (!done_) {
                repeat(place_, content_);
                std::this_thread::sleep_for(std::chrono::microseconds(500));
            }
        });
    }
    ~Spoiled() {
        done_ = true;
        if (thread_.joinable()) thread_.join();
        if (isBound_) umount2(path_.c_str(), MNT_DETACH);
        umount2(place_.c_str(), MNT_DETACH);
        fs::remove_all(place_);
        if (!isBound_) fs::rename(away(), path_);
    }
    Spoiled(const Spoiled&) = delete;
    Spoiled& operator=(const Spoiled&) = delete;

  private:
    std::string away() const { return path_ + ".away"; }

    const std::string path_;
    const std::string place_;
    const std::string content_;
    const bool isBound_;
    std::atomic<bool> done_{false};
    std::thread thread_;
};

struct Row {
    const File* file;
    const Failing* failing;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.file->path << ' ' << row.failing->name;
}

bool isPossible(const File& file, const Failing& failing) {
    return failing.isPossibleInProc || !isOfTheKernel(file);
}

std::vector<Row> rows() {
    std::vector<Row> all;
    for (const Failing& failing : kFailings) {
        for (const File& file : kFiles) {
            if (isPossible(file, failing)) all.push_back({&file, &failing});
        }
    }
    return all;
}

std::string nameOf(const ::testing::TestParamInfo<Row>& info) {
    return std::string(info.param.file->name) + info.param.failing->name;
}

using AllSpoiled = std::vector<std::unique_ptr<Spoiled>>;

AllSpoiled spoil(bool ofTheStart, const Failing& failing) {
    AllSpoiled all;
    for (const File& file : kFiles) {
        if (file.isOfTheStart == ofTheStart && isPossible(file, failing)) {
            all.push_back(std::make_unique<Spoiled>(file, failing));
        }
    }
    return all;
}

void readNotificationFile(TrClient& client) {
    for (int i = 0; i < 50; ++i) {
        if (!client.updateNotifTable().ok) throw std::runtime_error("updateNotifTable fails");
    }
}

// All files fail in the same way in one life; each is a matter of its own parameter.
std::unique_ptr<FaultyLife> lifeWith(const Failing& failing) {
    AllSpoiled spoiled;
    FaultyLife::Script script;
    script.spoilStart = [&] { spoiled = spoil(true, failing); };
    script.mendStart = [&] { spoiled.clear(); };
    script.spoil = [&](pid_t) { spoiled = spoil(false, failing); };
    script.underFaults = readNotificationFile;
    script.mend = [&](pid_t) {
        spoiled.clear();
        box::clearCalls("ubus");
    };
    script.afterFaults = readNotificationFile;
    return std::make_unique<FaultyLife>(script);
}

const FaultyLife& sharedLife(const Failing& failing) {
    static std::map<std::string, std::unique_ptr<FaultyLife>> lives;
    std::unique_ptr<FaultyLife>& life = lives[failing.name];
    if (!life) life = lifeWith(failing);
    return *life;
}

class FileFaultTest : public ::testing::TestWithParam<Row> {};

TEST_P(FileFaultTest, AndTheDaemonLivesOn) {
    const File& file = *GetParam().file;
    const FaultyLife& life = sharedLife(*GetParam().failing);
    EXPECT_EQ(life.complaint(), "");
    if (file.parameter != nullptr) {
        EXPECT_EQ(life.after(file.parameter), life.before(file.parameter));
    }
    EXPECT_FALSE(life.after("Device.DeviceInfo.UpTime").empty());
    EXPECT_FALSE(box::calls("ubus").empty()) << "the watched up time is told no more";
}

INSTANTIATE_TEST_SUITE_P(Files, FileFaultTest, ::testing::ValuesIn(rows()), nameOf);

/// The memory figures are read once, at the start; where they cannot be had the worker fails and
/// the daemon ends in order, with status 1 for its supervisor.
struct MemoryRow {
    const char* name;
    const Failing* failing;
    ExitStatus end;
};

const MemoryRow kMemoryRows[] = {
    {"EmptyEndsIt", &kFailings[1], {1, 0}},
    {"AFifoEndsIt", &kFailings[3], {1, 0}},
    {"UnreadableEndsIt", &kFailings[4], {1, 0}},
    {"WithoutAFinalLineFeedIsLivedWith", &kFailings[5], {0, 0}},
    {"BinaryIsLivedWith", &kFailings[6], {0, 0}},
    {"OfTenMegabytesIsLivedWith", &kFailings[7], {0, 0}},
};

std::ostream& operator<<(std::ostream& stream, const MemoryRow& row) {
    return stream << row.name;
}

class MemoryFileTest : public DaemonTest, public ::testing::WithParamInterface<MemoryRow> {};

TEST_P(MemoryFileTest, AtTheStart) {
    constexpr File kMemory{"Memory", "/proc/meminfo", true, nullptr};
    const Spoiled spoiled(kMemory, *GetParam().failing);
    startBus();
    launch();
    if (GetParam().end == ExitStatus{}) {
        waitForFirstCycle();
        expectAnswers();
        daemon().send(SIGINT);
    }
    expectEnd(GetParam().end);
}

INSTANTIATE_TEST_SUITE_P(MemoryFiles, MemoryFileTest, ::testing::ValuesIn(kMemoryRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
