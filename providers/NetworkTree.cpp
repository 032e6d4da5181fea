#include "providers/NetworkTree.h"

#include "model/Storage.h"
#include "stb/src/common/Text.h"

namespace TR {

namespace {

using Stats = NetworkDataProvider::Interface::Stats;

constexpr char kIpInterfaces[] = "Device.IP.Interface.";
constexpr char kEthernetInterfaces[] = "Device.Ethernet.Interface.";
constexpr char kVendorBranch[] = "Device.Services.STBService.1.X_Kelm.";

constexpr const char* kRoots[] = {"Device.IP.", kIpInterfaces, "Device.Ethernet.",
                                  kEthernetInterfaces};

struct StatsRow {
    const char* name;
    std::uint64_t Stats::*figure;
};

constexpr StatsRow kStatsRows[] = {
    {"BytesSent", &Stats::BytesSent},
    {"BytesReceived", &Stats::BytesReceived},
    {"PacketsSent", &Stats::PacketsSent},
    {"PacketsReceived", &Stats::PacketsReceived},
    {"ErrorsSent", &Stats::ErrorsSent},
    {"ErrorsReceived", &Stats::ErrorsReceived},
    {"DiscardPacketsSent", &Stats::DiscardPacketsSent},
    {"DiscardPacketsReceived", &Stats::DiscardPacketsReceived},
    {"BroadcastPacketsReceived", &Stats::BroadcastPacketsReceived},
    {"BroadcastPacketsSent", &Stats::BroadcastPacketsSent},
    {"MulticastPacketsReceived", &Stats::MulticastPacketsReceived},
    {"MulticastPacketsSent", &Stats::MulticastPacketsSent},
    {"UnicastPacketsReceived", &Stats::UnicastPacketsReceived},
    {"UnicastPacketsSent", &Stats::UnicastPacketsSent},
    {"UnknownProtoPacketsReceived", &Stats::UnknownProtoPacketsReceived},
};

std::string instance(const char* branch, unsigned position) {
    return branch + Utils::format("%u.", position);
}

std::uint64_t secondsSince(const NSTime& start) {
    return static_cast<std::uint64_t>((NSTime::nowRelative() - start).toTimeT());
}

}  // namespace

std::map<std::string, std::string> NetworkTree::aliases() const {
    std::map<std::string, std::string> aliases;
    for (unsigned position = 1;; ++position) {
        const std::string branch = instance(kIpInterfaces, position);
        // A copy, because asking the store for an entry would make one.
        const Value name = storage_.getValueCopy(Address(branch + "Name"));
        if (name.getType() != Value::Type::String) return aliases;
        // The first one wins: should the same name stand again further on, that one is stale.
        aliases.emplace(name.getString(),
                        storage_.getValueCopy(Address(branch + "Alias")).getString());
    }
}

void NetworkTree::publishRoots() {
    for (const char* path : kRoots) set(path, Value::Object());
}

void NetworkTree::publishInterface(unsigned position, const Interface& interface) {
    const std::string ip = instance(kIpInterfaces, position);
    const std::string ethernet = instance(kEthernetInterfaces, position);
    for (const std::string& path : {ip, ip + "Stats.", ethernet, ethernet + "Stats."})
        set(path, Value::Object());
    publishIpParameters(ip, interface);
    publishEthernetParameters(ethernet, interface);
    publishStats(ip + "Stats.", interface.stats);
    publishStats(ethernet + "Stats.", interface.stats);
}

void NetworkTree::publishIpParameters(const std::string& branch, const Interface& interface) {
    Value alias(interface.alias);
    alias.setMutableByUser(true);
    setNumber(branch + "Enable", interface.enable ? 1 : 0);
    set(branch + "Name", Value(interface.name));
    setNumber(branch + "IPv4AddressNumberOfEntries", interface.ipv4Address.empty() ? 0 : 1);
    set(branch + "IPv4Address.1.IPAddress", Value(interface.ipv4Address));
    set(branch + "IPv4Address.1.SubnetMask", Value(interface.subnetMask));
    set(branch + "Status", Value(Interface::statusToString(interface.status)));
    set(branch + "Alias", alias);
    setNumber(branch + "LastChange", secondsSince(interface.lastChange));
}

void NetworkTree::publishEthernetParameters(const std::string& branch, const Interface& interface) {
    setNumber(branch + "Enable", interface.enable ? 1 : 0);
    set(branch + "Name", Value(interface.name));
    set(branch + "Status", Value(Interface::statusToString(interface.status)));
    set(branch + "LowerLayers", Value(std::string()));  // an Ethernet interface has none
    setNumber(branch + "Upstream", 1);  // every interface of an end device points to the network
    set(branch + "MACAddress", Value(interface.hardwareAddress));
    setNumber(branch + "MaxBitRate", interface.maxBitRate);
    set(branch + "DuplexMode", Value(Interface::duplexModeToString(interface.duplexMode)));
    setNumber(branch + "LastChange", secondsSince(interface.lastChange));
}

void NetworkTree::publishStats(const std::string& branch, const Stats& stats) {
    for (const StatsRow& row : kStatsRows) setNumber(branch + row.name, stats.*row.figure);
}

void NetworkTree::publishWiFi(const Interface& interface) {
    const std::string vendor = kVendorBranch;
    const std::string config = vendor + "Config.WiFiConfig.";
    const std::string status = vendor + "WiFiStatus.";
    for (const std::string& path : {vendor, vendor + "Config.", config, status})
        set(path, Value::Object());
    set(config + "SSID", Value(interface.wiFiConfig.ssid));
    set(config + "WPAPassphrase", Value(interface.wiFiConfig.wpaPassphrase));
    set(config + "WEPPassphrase", Value(interface.wiFiConfig.wepPassphrase));
    set(status + "SSID", Value(interface.wiFiStatus.ssid));
    set(status + "BitRate", Value(static_cast<long long>(interface.wiFiStatus.bitRate)));
    set(status + "BSSID", Value(interface.wiFiStatus.bssid));
    set(status + "Frequency", Value(static_cast<long long>(interface.wiFiStatus.frequency)));
    set(status + "Signal", Value(static_cast<long long>(interface.wiFiStatus.signal)));
}

void NetworkTree::set(const std::string& path, const Value& value) {
    storage_.set(Address(path), value);
}

void NetworkTree::setNumber(const std::string& path, std::uint64_t number) {
    set(path, Value(static_cast<long long>(number)));
}

}  // namespace TR
