#pragma once

#include "providers/NetworkCounters.h"

#include <map>
#include <optional>
#include <string>

namespace TR {

/// What the kernel tells of one interface.
struct NetworkLink {
    unsigned index = 0;
    unsigned flags = 0;           ///< IFF_UP, IFF_RUNNING, ...
    std::string hardwareAddress;  ///< 00:1a:2b:3c:4d:5e
    std::string ipv4Address;      ///< the first one that the kernel lists; empty when there is none
    std::string subnetMask;
    NetworkCounters::Reading counters{};
};

/// By interface name.
using NetworkLinks = std::map<std::string, NetworkLink>;

/// Every interface that has a link layer, whatever its name; none at all when the kernel could not
/// be asked. Touches nothing shared; any thread may call.
std::optional<NetworkLinks> readNetworkLinks();

}  // namespace TR
