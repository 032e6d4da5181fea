#include "providers/NetworkDataProvider.h"

#include "model/Storage.h"
#include "providers/NetworkCounters.h"
#include "providers/NetworkText.h"
#include "providers/NetworkTree.h"
#include "stb/src/common/Commands.h"
#include "stb/src/common/Files.h"
#include "stb/src/common/NSRegExp.h"

#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <net/if.h>

namespace TR {

namespace {

using Interface = NetworkDataProvider::Interface;

constexpr char kOwnInterfaces[] = "wlan[0-9]+|eth[0-9]+";
constexpr char kWirelessInterfaces[] = "wlan[0-9]+";

bool matchesWhole(const NSRegExp& expression, const std::string& name) {
    std::vector<std::string> match;
    return expression.match(name, match) && match.front() == name;
}

bool isWireless(const std::string& name) {
    static const NSRegExp wireless(kWirelessInterfaces);
    return matchesWhole(wireless, name);
}

std::string kernelFile(const std::string& interfaceName, const char* file) {
    return Utils::getFileContent("/sys/class/net/" + interfaceName + "/" + file);
}

}  // namespace

bool NetworkDataProvider::load() {
    std::optional<NetworkLinks> links = readNetworkLinks();
    if (!links) return false;
    const NetworkLinks before = std::exchange(links_, std::move(*links));
    filterInterfaces();
    for (const auto& [name, link] : links_) updateInterface(name, link, before);
    for (auto& [name, interface] : interfaces_) {
        if (links_.count(name) == 0) updateVanished(interface);
        if (isWireless(name)) updateWiFi(interface);
    }
    return true;
}

bool NetworkDataProvider::store() {
    if (storage() == nullptr) return false;
    const pthread_helper::scoped_lock lock(storage()->getStorageMutex());
    takeOverAliases();
    publish();
    return true;
}

// The ACS writes an alias at an instance number and means the interface that has the number now. So
// aliases are read back by name before a new interface shifts the numbers.
void NetworkDataProvider::takeOverAliases() {
    for (const auto& [name, alias] : NetworkTree::aliases(*storage())) {
        const auto known = interfaces_.find(name);
        if (known != interfaces_.end()) known->second.alias = alias;
    }
}

void NetworkDataProvider::publish() const {
    NetworkTree::publishRoots(*storage());
    unsigned position = 0;
    const Interface* wireless = nullptr;
    for (const auto& [name, interface] : interfaces_) {
        NetworkTree::publishInterface(*storage(), ++position, interface);
        if (isWireless(name)) wireless = &interface;
    }
    // All wireless interfaces share one branch. Only the last one by name writes it: if each wrote
    // it in turn, every refresh would look like a change.
    if (wireless != nullptr) NetworkTree::publishWiFi(*storage(), *wireless);
}

void NetworkDataProvider::filterInterfaces() {
    static const NSRegExp own(kOwnInterfaces);
    for (auto link = links_.begin(); link != links_.end();)
        link = matchesWhole(own, link->first) ? std::next(link) : links_.erase(link);
}

void NetworkDataProvider::updateInterface(const std::string& name, const NetworkLink& link,
                                          const NetworkLinks& before) {
    const auto linkBefore = before.find(name);
    Interface& interface = interfaces_.try_emplace(name, name).first->second;
    interface.hardwareAddress = link.hardwareAddress;
    interface.ipv4Address = link.ipv4Address;
    interface.subnetMask = link.subnetMask;
    interface.enable = (link.flags & IFF_UP) != 0;
    countTraffic(interface.stats, linkBefore == before.end() ? nullptr : &linkBefore->second, link);
    interface.duplexMode = getDuplexMode(name);
    interface.maxBitRate = getInterfaceSpeed(name);
    const auto status = NetworkText::status(link.flags, kernelFile(name, "operstate"));
    if (status != interface.status) interface.changeStatus(status);
}

// The counts stay as they were when it vanished.
void NetworkDataProvider::updateVanished(Interface& interface) {
    interface.hardwareAddress.clear();
    interface.ipv4Address.clear();
    interface.subnetMask.clear();
    interface.enable = false;
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

Interface::DuplexMode NetworkDataProvider::getDuplexMode(const std::string& name) {
    return NetworkText::duplexMode(kernelFile(name, "duplex"));
}

std::uint64_t NetworkDataProvider::getInterfaceSpeed(const std::string& name) {
    return NetworkText::bitRate(kernelFile(name, "speed"));
}

Interface::WiFiConfig NetworkDataProvider::getWiFiConfig(const std::string& name) {
    return NetworkText::wiFiConfig(
        Utils::getFileContents("/var/kelm/network." + name, 0, Utils::kLargestSetting));
}

Interface::WiFiStatus NetworkDataProvider::getWiFiStatus(const std::string& name) {
    return NetworkText::wiFiStatus(Utils::processPipe("iw " + name + " link"));
}

}  // namespace TR
