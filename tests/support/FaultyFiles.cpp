#include "tests/support/FaultyFiles.h"

#include "tests/support/Box.h"
#include "tests/support/Repeating.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
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

class SpoiledFile {
  public:
    SpoiledFile(const FaultyFile& file, const FileFailing& failing)
        : path_(file.path),
          isBound_(isOfTheKernel(file)),
          place_(isBound_ ? "/tmp/instead-of" + fs::path(path_).filename().string() : path_),
          content_(box::readFile(path_)),
          away_(isBound_ ? nullptr : faults::withoutFile(path_)) {
        failing.place(place_, content_);
        if (isBound_) bind(place_, path_);
        if (failing.repeat != nullptr)
            repeating_ = std::make_unique<Repeating>(
                [this, repeat = failing.repeat] { repeat(place_, content_); }, kPause);
    }
    ~SpoiledFile() {
        repeating_.reset();
        if (isBound_) umount2(path_.c_str(), MNT_DETACH);
        umount2(place_.c_str(), MNT_DETACH);
        fs::remove_all(place_);
    }
    SpoiledFile(const SpoiledFile&) = delete;
    SpoiledFile& operator=(const SpoiledFile&) = delete;

  private:
    static constexpr std::chrono::microseconds kPause{3000};

    const std::string path_;
    const bool isBound_;
    const std::string place_;
    const std::string content_;
    const Fault away_;
    std::unique_ptr<Repeating> repeating_;
};

}  // namespace

const std::vector<FaultyFile>& faultyFiles() {
    static const std::vector<FaultyFile> files{
        {"/proc/uptime", false, nullptr},
        {"/sys/class/thermal/thermal_zone0/temp", false,
         "Device.DeviceInfo.TemperatureStatus.TemperatureSensor.1.Value"},
        {"/sys/class/net/eth0/speed", false, "Device.Ethernet.Interface.1.MaxBitRate"},
        {"/sys/class/net/eth0/duplex", false, "Device.Ethernet.Interface.1.DuplexMode"},
        {"/sys/class/net/eth0/operstate", false, "Device.Ethernet.Interface.1.Status"},
        {"/sys/class/tsdemux/discontinue_counter", false, nullptr},
        {"/var/kelm/TZ", false, "Device.Services.STBService.1.X_Kelm.Config.TimeZone"},
        {"/var/kelm/update_type", false, "Device.Services.STBService.1.X_Kelm.Config.UpdateType"},
        {"/var/kelm/update_server.tr69", false,
         "Device.Services.STBService.1.X_Kelm.Config.UpdateServer"},
        {"/var/kelm/provision_server.tr69", false,
         "Device.Services.STBService.1.X_Kelm.Config.ProvisionServer"},
        {"/var/kelm/syslog_host", false, "Device.Services.STBService.1.X_Kelm.Config.SyslogHost"},
        {"/var/kelm/network.wlan0", false,
         "Device.Services.STBService.1.X_Kelm.Config.WiFiConfig.SSID"},
        {"/tmp/syslog", false, "Device.DeviceInfo.DeviceLog"},
        {"/tmp/syslog.0", false, "Device.DeviceInfo.DeviceLog"},
        {"/tmp/.easycwmp_notif_param_value", false, nullptr},
        {"/etc/kelm_deviceid", true, nullptr},
        {"/etc/kelm_firmware.version", true, nullptr},
    };
    return files;
}

const std::vector<FileFailing>& fileFailings() {
    static const std::vector<FileFailing> failings{
        {"IsMissing", [](const std::string&, const std::string&) {}, false},
        {"IsEmpty", [](const std::string& path, const std::string&) { box::writeFile(path, ""); }},
        {"IsAFolder",
         [](const std::string& path, const std::string&) { fs::create_directory(path); }, false},
        {"IsAFifo",
         [](const std::string& path, const std::string&) { mkfifo(path.c_str(), 0600); }},
        {"CannotBeRead", placeUnreadable},
        {"HasNoFinalLineFeed",
         [](const std::string& path, const std::string& content) {
             box::writeFile(path, withoutTheLastLineFeed(content));
         }},
        {"IsBinary",
         [](const std::string& path, const std::string&) { box::writeFile(path, everyByte()); }},
        {"IsTenMegabytes",
         [](const std::string& path, const std::string&) { box::writeFile(path, kTenMegabytes); }},
        {"IsASparseGibibyte",
         [](const std::string& path, const std::string& content) {
             box::writeFile(path, content);
             fs::resize_file(path, std::uintmax_t{1} << 30);
         }},
        {"ChangesWhileItIsRead", box::writeFile, true,
         [](const std::string& path, const std::string& content) {
             box::writeFile(path, kManyLines);
             box::writeFile(path, content.substr(0, content.size() / 2));
             box::writeFile(path, content);
         }},
        {"IsReplacedAgainAndAgain", box::writeFile, false,
         [](const std::string& path, const std::string& content) {
             box::replaceFile(path, content + content);
         }},
    };
    return failings;
}

Fault spoil(const FaultyFile& file, const FileFailing& failing) {
    if (isOfTheKernel(file) && !failing.isPossibleInProc) return nullptr;
    return std::make_shared<SpoiledFile>(file, failing);
}
