#include "providers/InterfaceList.h"

#include <algorithm>
#include <cstring>

#include <netpacket/packet.h>
#include <sys/socket.h>

namespace TR {

std::optional<InterfaceList> InterfaceList::read() {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) != 0) return std::nullopt;
    return InterfaceList(list);
}

bool InterfaceList::isOfFamily(const ifaddrs& entry, int family) {
    return entry.ifa_addr != nullptr && entry.ifa_addr->sa_family == family;
}

std::array<unsigned char, 6> InterfaceList::hardwareAddress(const ifaddrs& entry) {
    sockaddr_ll link{};
    std::memcpy(&link, entry.ifa_addr, sizeof link);
    std::array<unsigned char, 6> address{};
    std::copy_n(link.sll_addr, address.size(), address.begin());
    return address;
}

}  // namespace TR
