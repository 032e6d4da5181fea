#pragma once

#include "providers/BaseDataProvider.h"
#include "providers/NetworkInterface.h"
#include "providers/NetworkLinks.h"

#include <cstdint>
#include <map>
#include <string>

namespace TR {

class NetworkTree;

/// `Device.IP.Interface.` and `Device.Ethernet.Interface.`: the box's wired and wireless interfaces
/// with their statistics, and of the wireless ones the WiFi settings and the link. An interface
/// once seen keeps its place and alias when it vanishes, so that the others keep their numbers. The
/// worker thread alone calls; `load()` runs commands and takes no lock, `store()` holds the store
/// mutex throughout. The ACS may write each `Alias` at any moment; the store keeps it.
class NetworkDataProvider : public BaseDataProvider {
  public:
    using Interface = NetworkInterface;

    using BaseDataProvider::BaseDataProvider;

    bool updateValues() override;
    /// False, and everything stays as it was, when the kernel's list cannot be had.
    bool load() override;
    /// False without a store.
    bool store() override;

    /// By name, which is the order of their instance numbers.
    const std::map<std::string, Interface>& interfaces() const { return interfaces_; }

    static Interface::DuplexMode getDuplexMode(const std::string& name);
    /// Mbit/s.
    static std::uint64_t getInterfaceSpeed(const std::string& name);
    static Interface::WiFiConfig getWiFiConfig(const std::string& name);
    /// Runs a command with the name in it: only for names that have passed the filter.
    static Interface::WiFiStatus getWiFiStatus(const std::string& name);

  private:
    /// Keeps the links whose whole name is that of a wired or wireless interface; VLANs, peers and
    /// the like are not the box's own.
    void filterInterfaces();
    void updateInterface(const std::string& name, const NetworkLink& link);
    void updateVanished(Interface& interface);
    void updateWiFi(Interface& interface);
    // The caller of these two holds the store mutex.
    void takeOverAliases(const NetworkTree& tree);
    void publish(NetworkTree& tree) const;

    NetworkLinks links_;  // of the latest load
    std::map<std::string, Interface> interfaces_;
};

}  // namespace TR
