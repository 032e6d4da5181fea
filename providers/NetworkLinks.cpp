#include "providers/NetworkLinks.h"

#include "providers/InterfaceList.h"
#include "stb/src/common/Text.h"

#include <array>
#include <cstddef>
#include <cstring>

#include <netdb.h>
#include <netinet/in.h>
#include <netpacket/packet.h>
#include <sys/socket.h>

namespace TR {

namespace {

// Older kernels give fewer members than the header names; nothing behind these is read.
constexpr std::size_t kCounterBytes =
    offsetof(rtnl_link_stats, multicast) + sizeof(rtnl_link_stats::multicast);

rtnl_link_stats readCounters(const void* data) {
    rtnl_link_stats stats{};
    if (data != nullptr) std::memcpy(&stats, data, kCounterBytes);
    return stats;
}

NetworkLink linkOf(const ifaddrs& entry) {
    sockaddr_ll address{};
    std::memcpy(&address, entry.ifa_addr, sizeof address);
    const auto byte = InterfaceList::hardwareAddress(entry);
    NetworkLink link;
    link.index = static_cast<unsigned>(address.sll_ifindex);
    link.flags = entry.ifa_flags;
    link.hardwareAddress = Utils::format("%02x:%02x:%02x:%02x:%02x:%02x", byte[0], byte[1], byte[2],
                                         byte[3], byte[4], byte[5]);
    link.counters = readCounters(entry.ifa_data);
    return link;
}

std::string hostText(const sockaddr* address) {
    std::array<char, NI_MAXHOST> text{};
    if (address == nullptr || getnameinfo(address, sizeof(sockaddr_in), text.data(), text.size(),
                                          nullptr, 0, NI_NUMERICHOST) != 0)
        return {};
    return text.data();
}

void addAddress(const ifaddrs& entry, NetworkLinks& links) {
    const auto link = links.find(entry.ifa_name);
    // The primary address is listed first; the others have no place in the tree.
    if (link == links.end() || !link->second.ipv4Address.empty()) return;
    link->second.ipv4Address = hostText(entry.ifa_addr);
    link->second.subnetMask = hostText(entry.ifa_netmask);
}

}  // namespace

std::optional<NetworkLinks> readNetworkLinks() {
    const auto list = InterfaceList::read();
    if (!list) return std::nullopt;
    NetworkLinks links;
    for (const ifaddrs* entry = list->first(); entry != nullptr; entry = entry->ifa_next)
        if (InterfaceList::isOfFamily(*entry, AF_PACKET))
            links.emplace(entry->ifa_name, linkOf(*entry));
    for (const ifaddrs* entry = list->first(); entry != nullptr; entry = entry->ifa_next)
        if (InterfaceList::isOfFamily(*entry, AF_INET)) addAddress(*entry, links);
    return links;
}

}  // namespace TR
