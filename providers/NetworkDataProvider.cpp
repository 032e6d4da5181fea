#include "providers/NetworkDataProvider.h"

#include "model/Storage.h"
#include "providers/NetworkText.h"
#include "providers/NetworkTree.h"
#include "stb/src/common/Commands.h"
#include "stb/src/common/Files.h"
#include "stb/src/common/NSRegExp.h"

#include <iterator>
#include <optional>
#include <utility>

#include <net/if.h>

namespace TR {

namespace {

constexpr char kOwnInterfaces[] = "^(wlan[0-9]+|eth[0-9]+)$";

std::string kernelFile(const std::string& interfaceName, const char* file) {
    return Utils::getFileContent("/sys/class/net/" + interfaceName + "/" + file);
}

}  // namespace

bool NetworkDataProvider::updateValues() {
    return load() && store();
}

bool NetworkDataProvider::load() {
    std::optional<NetworkLinks> links = readNetworkLinks();
    if (!links) return false;
    links_ = std::move(*links);
    filterInterfaces();
    for (const auto& [name, link] : links_) updateInterface(name, link);
    for (auto& [name, interface] : interfaces_) {
        if (links_.count(name) == 0) updateVanished(interface);
        if (interface.isWireless()) updateWiFi(interface);
    }
    return true;
}

bool NetworkDataProvider::store() {
    if (storage() == nullptr) return false;
    const pthread_helper::scoped_lock lock(storage()->getStorageMutex());
    NetworkTree tree(*storage());
    takeOverAliases(tree);
    publish(tree);
    return true;
}

// The ACS writes into the store, at a number, but means the interface that has this number now. So
// aliases are read back, by name, before an interface that has come moves the numbers.
void NetworkDataProvider::takeOverAliases(const NetworkTree& tree) {
    for (const auto& [name, alias] : tree.aliases()) {
        const auto known = interfaces_.find(name);
        if (known != interfaces_.end()) known->second.alias = alias;
    }
}

void NetworkDataProvider::publish(NetworkTree& tree) const {
    tree.publishRoots();
    unsigned position = 0;
    const Interface* wireless = nullptr;
    for (const auto& [name, interface] : interfaces_) {
        tree.publishInterface(++position, interface);
        if (interface.isWireless()) wireless = &interface;
    }
    // All wireless interfaces share one branch. The last one by name has it for good: if each wrote
    // it in turn, every refresh would look like a change.
    if (wireless != nullptr) tree.publishWiFi(*wireless);
}

void NetworkDataProvider::filterInterfaces() {
    static const NSRegExp own(kOwnInterfaces);
    for (auto link = links_.begin(); link != links_.end();)
        link = own.match(link->first) ? std::next(link) : links_.erase(link);
}

void NetworkDataProvider::updateInterface(const std::string& name, const NetworkLink& link) {
    Interface& interface = interfaces_.try_emplace(name, name).first->second;
    interface.hardwareAddress = link.hardwareAddress;
    interface.ipv4Address = link.ipv4Address;
    interface.subnetMask = link.subnetMask;
    interface.enable = (link.flags & IFF_UP) != 0;
    interface.counters.update(link.index, link.counters);
    interface.stats = interface.counters.stats();
    interface.duplexMode = getDuplexMode(name);
    interface.maxBitRate = getInterfaceSpeed(name);
    const auto status = NetworkText::status(link.flags, kernelFile(name, "operstate"));
    if (status != interface.status) interface.changeStatus(status);
}

// Counts stay: they are what passed until it vanished.
void NetworkDataProvider::updateVanished(Interface& interface) {
    interface.hardwareAddress.clear();
    interface.ipv4Address.clear();
    interface.subnetMask.clear();
    interface.enable = false;
    interface.counters.vanished();
    interface.duplexMode = Interface::DuplexMode::Auto;
    interface.maxBitRate = 0;
    if (interface.status != Interface::Status::NotPresent)
        interface.changeStatus(Interface::Status::NotPresent);
}

void NetworkDataProvider::updateWiFi(Interface& interface) {
    const bool isThere = links_.count(interface.name) != 0;
    interface.wiFiConfig = getWiFiConfig(interface.name);
    interface.wiFiStatus = isThere ? getWiFiStatus(interface.name) : Interface::WiFiStatus();
}

NetworkInterface::DuplexMode NetworkDataProvider::getDuplexMode(const std::string& name) {
    return NetworkText::duplexMode(kernelFile(name, "duplex"));
}

std::uint64_t NetworkDataProvider::getInterfaceSpeed(const std::string& name) {
    return NetworkText::bitRate(kernelFile(name, "speed"));
}

NetworkInterface::WiFiConfig NetworkDataProvider::getWiFiConfig(const std::string& name) {
    return NetworkText::wiFiConfig(
        Utils::getFileContents("/var/kelm/network." + name, 0, Utils::kLargestSetting));
}

NetworkInterface::WiFiStatus NetworkDataProvider::getWiFiStatus(const std::string& name) {
    return NetworkText::wiFiStatus(Utils::processPipe("iw " + name + " link"));
}

}  // namespace TR
