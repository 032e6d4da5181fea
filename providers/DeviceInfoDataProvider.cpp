#include "providers/DeviceInfoDataProvider.h"

#include "model/Storage.h"
#include "providers/InterfaceList.h"
#include "stb/src/common/Commands.h"
#include "stb/src/common/Files.h"
#include "stb/src/common/JsonEscape.h"
#include "stb/src/common/SystemTexts.h"
#include "stb/src/common/Text.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include <sys/socket.h>

namespace TR {

namespace {

const std::string kPrefix = "Device.DeviceInfo.";

constexpr char kIdentityInterface[] = "eth0";
constexpr std::size_t kOuiDigits = 6;

struct Free {
    void operator()(char* buffer) const { std::free(buffer); }
};

// The kernel's statistics hang on the data pointer of a real link-layer entry.
bool isIdentityLink(const ifaddrs& entry) {
    return std::strcmp(entry.ifa_name, kIdentityInterface) == 0 &&
           InterfaceList::isOfFamily(entry, AF_PACKET) && entry.ifa_data != nullptr;
}

std::string serialText(const std::array<unsigned char, 6>& byte) {
    return Utils::toUpperString(Utils::format("%02x%02x%02x%02x%02x%02x", byte[0], byte[1], byte[2],
                                              byte[3], byte[4], byte[5]));
}

}  // namespace

namespace DeviceInfo {

std::string upTime(const std::string& procUptime) {
    const std::size_t point = procUptime.find('.');
    return point == std::string::npos ? std::string() : procUptime.substr(0, point);
}

std::string memoryStatus(const std::string& procMeminfo, const std::string& key) {
    // A missing key makes npos + length wrap round, on purpose (see the header).
    const std::size_t start = procMeminfo.find(key) + key.length();
    const std::size_t end = procMeminfo.find("kB", start);
    return Utils::trim(procMeminfo.substr(start, end - start));
}

std::string manufacturerOui(const std::string& macAddress) {
    return macAddress.size() < kOuiDigits ? std::string() : macAddress.substr(0, kOuiDigits);
}

}  // namespace DeviceInfo

void DeviceInfoDataProvider::init() {
    if (storage() == nullptr) return;
    const pthread_helper::scoped_lock lock(storage()->getStorageMutex());
    set("", Value::Object());
    initIdentity();
    set("MemoryStatus.", Value::Object());
    set("MemoryStatus.Total", Value(memoryStatusTotal()));
    set("MemoryStatus.Free", Value(memoryStatusFree()));
    set("X_Kelm_ChipID", Value(xKelmChipId()));
    set("ProcessStatus.", Value::Object());
    set("TemperatureStatus.", Value::Object());
    set("TemperatureStatus.TemperatureSensor.1.Name", Value(temperatureName()));
}

void DeviceInfoDataProvider::initIdentity() {
    setupForcedInform(kPrefix + "SpecVersion", Value(specVersion()));
    setupForcedInform(kPrefix + "Description", Value(description()));
    setupStoredInConfig(kPrefix + "ProvisioningCode", "easycwmp.@local[0].provisioning_code");
    setupForcedInform(kPrefix + "Manufacturer", Value(manufacturer()));
    setupForcedInform(kPrefix + "ManufacturerOUI", Value(manufacturerOui()));
    setupForcedInform(kPrefix + "ProductClass", Value(productClass()));
    setupForcedInform(kPrefix + "SerialNumber", Value(serialNumber()));
    setupForcedInform(kPrefix + "HardwareVersion", Value(hardwareVersion()));
    setupForcedInform(kPrefix + "SoftwareVersion", Value(softwareVersion()));
    setupForcedInform(kPrefix + "ModelName", Value(modelName()));
}

bool DeviceInfoDataProvider::store() {
    if (storage() == nullptr) return false;
    const pthread_helper::scoped_lock lock(storage()->getStorageMutex());
    set("UpTime", Value(upTime()));
    set("TemperatureStatus.TemperatureSensor.1.Value", Value(temperatureValue()));
    // Counted twice a refresh, on purpose: the second count stands.
    set("ProcessStatus.ProcessNumberOfEntries", Value(processNumberOfEntries()));
    set("ProcessStatus.ProcessNumberOfEntries", Value(processNumberOfEntries()));
    set("DeviceLog", Value(deviceLog()));
    return true;
}

void DeviceInfoDataProvider::set(const char* name, Value value) {
    storage()->set(Address(kPrefix + name), std::move(value));
}

void DeviceInfoDataProvider::setupForcedInform(const std::string& path, const Value& value) {
    storage()->set(Address(path), value);
    (*storage())[Address(path)].setForcedInform(true);
}

void DeviceInfoDataProvider::setupStoredInConfig(const std::string& path,
                                                 const std::string& configPath) {
    storage()->set(Address(path), Value(std::string()));
    (*storage())[Address(path)].setMutableByUser(true);
    (*storage())[Address(path)].setPathInConfig(configPath);
}

std::string DeviceInfoDataProvider::macAddress() const {
    const auto list = InterfaceList::read();
    if (!list) return {};
    std::string address;
    for (const ifaddrs* entry = list->first(); entry != nullptr; entry = entry->ifa_next)
        if (isIdentityLink(*entry)) address = serialText(InterfaceList::hardwareAddress(*entry));
    return address;
}

std::string DeviceInfoDataProvider::hardwareVersion() const {
    return Utils::getCmdOutput("chipid_tool hwrev && chipid_tool pertype");
}

std::string DeviceInfoDataProvider::softwareVersion() const {
    return Utils::getFileContent("/etc/kelm_firmware.version");
}

std::string DeviceInfoDataProvider::xKelmChipId() const {
    return Utils::getCmdOutput("chipid_tool");
}

std::string DeviceInfoDataProvider::deviceId() const {
    return Utils::trim(Utils::getFileContent("/etc/kelm_deviceid"));
}

std::string DeviceInfoDataProvider::upTime() const {
    return DeviceInfo::upTime(Utils::getFileContent("/proc/uptime"));
}

// Two calls at the start; NOLINTNEXTLINE(performance-unnecessary-value-param)
std::string DeviceInfoDataProvider::memoryStatus(std::string key) const {
    return DeviceInfo::memoryStatus(readMemInfo(), key);
}

std::string DeviceInfoDataProvider::processNumberOfEntries() const {
    return Utils::trim(Utils::getCmdOutput("ps | wc -l"));
}

std::string DeviceInfoDataProvider::temperatureValue() const {
    return Utils::trim(Utils::getFileContent("/sys/class/thermal/thermal_zone0/temp"));
}

std::string DeviceInfoDataProvider::deviceLog() const {
    // Logs run to megabytes on a small box: they are escaped straight from the buffer they are in.
    std::size_t length = 0;
    const std::unique_ptr<char, Free> logs(getLogs(length));
    return Utils::escapeForJson({logs.get(), length});
}

}  // namespace TR
