#pragma once

#include <array>
#include <memory>
#include <optional>

#include <ifaddrs.h>

namespace TR {

/// The system's interface list, one entry per interface and address family, as getifaddrs gives it.
/// Owned, and freed with the object; a plain value for one pass over it.
class InterfaceList {
  public:
    /// Nothing when the system refuses the list.
    static std::optional<InterfaceList> read();

    /// The first entry or null; `ifa_next` leads to the others.
    const ifaddrs* first() const { return list_.get(); }

    static bool isOfFamily(const ifaddrs& entry, int family);

    /// The six bytes of an AF_PACKET entry's address.
    static std::array<unsigned char, 6> hardwareAddress(const ifaddrs& entry);

  private:
    explicit InterfaceList(ifaddrs* list) : list_(list, freeifaddrs) {}

    std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> list_;
};

}  // namespace TR
