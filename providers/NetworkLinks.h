#pragma once

#include <map>
#include <optional>
#include <string>

#include <linux/if_link.h>

namespace TR {

/// What the kernel reports of one interface.
struct NetworkLink {
    unsigned index = 0;           ///< the kernel gives a new interface a new one
    unsigned flags = 0;           ///< IFF_UP, IFF_RUNNING, ...
    std::string hardwareAddress;  ///< 00:1a:2b:3c:4d:5e
    std::string ipv4Address;      ///< the first one that the kernel lists, or empty
    std::string subnetMask;
    rtnl_link_stats counters{};  ///< 32 bits wide; the members up to `multicast`
};

/// By interface name.
using NetworkLinks = std::map<std::string, NetworkLink>;

/// Every interface that has a link layer, whatever its name; nothing when the kernel does not give
/// its list. Touches nothing shared; any thread may call.
std::optional<NetworkLinks> readNetworkLinks();

}  // namespace TR
