#include "tests/box/FaultyFiles.h"

#include "tests/support/Box.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

bool isOfTheKernel(const FaultyFile& file) {
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
    for (int round = 0; round < 16; ++round)
        for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    return bytes;
}

std::string withoutTheLastLineFeed(std::string text) {
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

void bind(const std::string& source, const std::string& target) {
    if (mount(source.c_str(), target.c_str(), nullptr, MS_BIND, nullptr) != 0)
        throw std::system_error(errno, std::generic_category(), "bind " + target);
}

// Reads of this process's first page fail, for root too.
void placeUnreadable(const std::string& path, const std::string&) {
    box::writeFile(path, "");
    bind("/proc/" + std::to_string(getpid()) + "/mem", path);
}

}  // namespace

const std::vector<FaultyFile>& faultyFiles() {
    static const std::vector<FaultyFile> files{
        {"UpTime", "/proc/uptime", false, nullptr},
        {"Temperature", "/sys/class/thermal/thermal_zone0/temp", false,
         "Device.DeviceInfo.TemperatureStatus.TemperatureSensor.1.Value"},
        {"Speed", "/sys/class/net/eth0/speed", false, "Device.Ethernet.Interface.1.MaxBitRate"},
        {"Duplex", "/sys/class/net/eth0/duplex", false, "Device.Ethernet.Interface.1.DuplexMode"},
        {"OperState", "/sys/class/net/eth0/operstate", false, "Device.Ethernet.Interface.1.Status"},
        {"DiscontinuityCounter", "/sys/class/tsdemux/discontinue_counter", false, nullptr},
        {"TimeZone", "/var/kelm/TZ", false, "Device.Services.STBService.1.X_Kelm.Config.TimeZone"},
        {"UpdateType", "/var/kelm/update_type", false,
         "Device.Services.STBService.1.X_Kelm.Config.UpdateType"},
        {"UpdateServer", "/var/kelm/update_server.tr69", false,
         "Device.Services.STBService.1.X_Kelm.Config.UpdateServer"},
        {"ProvisionServer", "/var/kelm/provision_server.tr69", false,
         "Device.Services.STBService.1.X_Kelm.Config.ProvisionServer"},
        {"SyslogHost", "/var/kelm/syslog_host", false,
         "Device.Services.STBService.1.X_Kelm.Config.SyslogHost"},
        {"WiFiSettings", "/var/kelm/network.wlan0", false,
         "Device.Services.STBService.1.X_Kelm.Config.WiFiConfig.SSID"},
        {"Log", "/tmp/syslog", false, "Device.DeviceInfo.DeviceLog"},
        {"OldLog", "/tmp/syslog.0", false, "Device.DeviceInfo.DeviceLog"},
        {"NotificationFile", "/tmp/.easycwmp_notif_param_value", false, nullptr},
        {"DeviceId", "/etc/kelm_deviceid", true, nullptr},
        {"FirmwareVersion", "/etc/kelm_firmware.version", true, nullptr},
    };
    return files;
}

const std::vector<FileFailing>& fileFailings() {
    static const std::vector<FileFailing> failings{
        {"IsMissing", [](const std::string&, const std::string&) {}, nullptr, false},
        {"IsEmpty", [](const std::string& path, const std::string&) { box::writeFile(path, ""); },
         nullptr, true},
        {"IsAFolder",
         [](const std::string& path, const std::string&) { fs::create_directory(path); }, nullptr,
         false},
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
        {"IsASparseGibibyte",
         [](const std::string& path, const std::string& content) {
             box::writeFile(path, content);
             fs::resize_file(path, std::uintmax_t{1} << 30);
         },
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
    return failings;
}

const FileFailing& fileFailing(const std::string& name) {
    const auto& all = fileFailings();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&](const auto& failing) { return name == failing.name; });
    if (found == all.end()) throw std::invalid_argument("no file can fail so: " + name);
    return *found;
}

bool isPossible(const FaultyFile& file, const FileFailing& failing) {
    return failing.isPossibleInProc || !isOfTheKernel(file);
}

SpoiledFile::SpoiledFile(const FaultyFile& file, const FileFailing& failing)
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

SpoiledFile::~SpoiledFile() {
    done_ = true;
    if (thread_.joinable()) thread_.join();
    if (isBound_) umount2(path_.c_str(), MNT_DETACH);
    umount2(place_.c_str(), MNT_DETACH);
    fs::remove_all(place_);
    if (!isBound_) fs::rename(away(), path_);
}
