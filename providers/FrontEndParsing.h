#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

// From the lines that commands print to what the front end publishes. Pure: any bytes may come in,
// any thread may call.
namespace TR::Igmp {

/// The kernel's IGMP settings; a key that is not among the lines leaves its 0.
struct KernelSettings {
    std::uint32_t forcedVersion = 0;  ///< 0: the kernel follows the querier's version
    std::uint32_t maximumMemberships = 0;
};

/// From lines such as "net.ipv4.igmp_max_memberships = 20". Of a repeated key the last line that
/// has a value wins.
KernelSettings kernelSettings(const std::vector<std::string>& sysctlLines);

/// The multicast groups that UDP sockets are bound to: of each line with "udp" anywhere in it the
/// first address from 224.0.0.0 to 239.255.255.255. An IPv4-mapped one in a line of an IPv6 socket
/// counts too.
std::set<std::string> groupAddresses(const std::vector<std::string>& netstatLines);

}  // namespace TR::Igmp
