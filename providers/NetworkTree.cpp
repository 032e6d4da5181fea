#include "providers/NetworkTree.h"

#include "stb/src/common/Text.h"

namespace TR::NetworkTree {

namespace {

using Stats = Interface::Stats;

constexpr char kIpInterfaces[] = "Device.IP.Interface.";
constexpr char kEthernetInterfaces[] = "Device.Ethernet.Interface.";
constexpr char kVendorBranch[] = "Device.Services.STBService.1.X_Kelm.";

constexpr const char* kRoots[] = {"Device.IP.", kIpInterfaces, "Device.Ethernet.",
                                  kEthernetInterfaces};

std::string instance(const char* branch, unsigned position) {
    return branch + Utils::format("%u.", position);
}

std::uint64_t secondsSince(const NSTime& start) {
    return static_cast<std::uint64_t>((NSTime::nowRelative() - start).toTimeT());
}

void set(Storage& storage, const std::string& path, const Value& value)
    KELM_REQUIRES(storage.getStorageMutex()) {
    storage.set(Address(path), value);
}

void setNumber(Storage& storage, const std::string& path, std::uint64_t number)
    KELM_REQUIRES(storage.getStorageMutex()) {
    set(storage, path, Value(static_cast<long long>(number)));
}

// What an IP and an Ethernet instance have in common.
void publishCommon(Storage& storage, const std::string& branch, const Interface& interface)
    KELM_REQUIRES(storage.getStorageMutex()) {
    const std::string stats = branch + "Stats.";
    for (const std::string& path : {branch, stats}) set(storage, path, Value::Object());
    setNumber(storage, branch + "Enable", interface.enable ? 1 : 0);
    set(storage, branch + "Name", Value(interface.name));
    set(storage, branch + "Status", Value(Interface::statusToString(interface.status)));
    setNumber(storage, branch + "LastChange", secondsSince(interface.lastChange));
    for (const Stats::Figure& figure : Stats::kFigures)
        setNumber(storage, stats + figure.name, interface.stats.*figure.value);
}

void publishIpParameters(Storage& storage, const std::string& branch, const Interface& interface)
    KELM_REQUIRES(storage.getStorageMutex()) {
    Value alias(interface.alias);
    alias.setMutableByUser(true);
    setNumber(storage, branch + "IPv4AddressNumberOfEntries",
              interface.ipv4Address.empty() ? 0 : 1);
    set(storage, branch + "IPv4Address.1.IPAddress", Value(interface.ipv4Address));
    set(storage, branch + "IPv4Address.1.SubnetMask", Value(interface.subnetMask));
    set(storage, branch + "Alias", alias);
}

void publishEthernetParameters(Storage& storage, const std::string& branch,
                               const Interface& interface)
    KELM_REQUIRES(storage.getStorageMutex()) {
    set(storage, branch + "LowerLayers", Value(std::string()));  // an Ethernet interface has none
    // Every interface of an end device points to the network.
    setNumber(storage, branch + "Upstream", 1);
    set(storage, branch + "MACAddress", Value(interface.hardwareAddress));
    setNumber(storage, branch + "MaxBitRate", interface.maxBitRate);
    set(storage, branch + "DuplexMode", Value(Interface::duplexModeToString(interface.duplexMode)));
}

}  // namespace

std::map<std::string, std::string> aliases(Storage& storage) {
    std::map<std::string, std::string> aliases;
    for (unsigned position = 1;; ++position) {
        const std::string branch = instance(kIpInterfaces, position);
        // A copy, because asking the store for an entry would make one.
        const Value name = storage.getValueCopy(Address(branch + "Name"));
        if (name.getType() != Value::Type::String) return aliases;
        // The first one wins; a later instance with the same name is stale.
        aliases.emplace(name.getString(),
                        storage.getValueCopy(Address(branch + "Alias")).getString());
    }
}

void publishRoots(Storage& storage) {
    for (const char* path : kRoots) set(storage, path, Value::Object());
}

void publishInterface(Storage& storage, unsigned position, const Interface& interface) {
    const std::string ip = instance(kIpInterfaces, position);
    const std::string ethernet = instance(kEthernetInterfaces, position);
    publishCommon(storage, ip, interface);
    publishCommon(storage, ethernet, interface);
    publishIpParameters(storage, ip, interface);
    publishEthernetParameters(storage, ethernet, interface);
}

void publishWiFi(Storage& storage, const Interface& interface) {
    const std::string vendor = kVendorBranch;
    const std::string config = vendor + "Config.WiFiConfig.";
    const std::string status = vendor + "WiFiStatus.";
    for (const std::string& path : {vendor, vendor + "Config.", config, status})
        set(storage, path, Value::Object());
    set(storage, config + "SSID", Value(interface.wiFiConfig.ssid));
    set(storage, config + "WPAPassphrase", Value(interface.wiFiConfig.wpaPassphrase));
    set(storage, config + "WEPPassphrase", Value(interface.wiFiConfig.wepPassphrase));
    set(storage, status + "SSID", Value(interface.wiFiStatus.ssid));
    set(storage, status + "BitRate", Value(interface.wiFiStatus.bitRate));
    set(storage, status + "BSSID", Value(interface.wiFiStatus.bssid));
    set(storage, status + "Frequency", Value(interface.wiFiStatus.frequency));
    set(storage, status + "Signal", Value(interface.wiFiStatus.signal));
}

}  // namespace TR::NetworkTree
