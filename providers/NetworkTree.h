#pragma once

#include "providers/NetworkDataProvider.h"

#include <map>
#include <string>

namespace TR {

class Storage;
class Value;

/// Where the network interfaces stand in the store. Lives for one publication on the worker thread;
/// its maker holds the store mutex and lends it the store for its life. Positions count from 1.
/// Nothing is ever removed: an instance that is not written again keeps its last values.
class NetworkTree {
  public:
    using Interface = NetworkDataProvider::Interface;

    explicit NetworkTree(Storage& storage) : storage_(storage) {}

    /// The aliases in the store by interface name: what was published last or what the ACS has
    /// written since.
    std::map<std::string, std::string> aliases() const;

    void publishRoots();
    /// Publishes both instances of the interface.
    void publishInterface(unsigned position, const Interface& interface);
    /// Publishes the WiFi branch, of which there is only one.
    void publishWiFi(const Interface& interface);

  private:
    void set(const std::string& path, const Value& value);
    void setNumber(const std::string& path, std::uint64_t number);
    void publishIpParameters(const std::string& branch, const Interface& interface);
    void publishEthernetParameters(const std::string& branch, const Interface& interface);
    void publishStats(const std::string& branch, const Interface::Stats& stats);

    Storage& storage_;
};

}  // namespace TR
