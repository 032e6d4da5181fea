#pragma once

#include <string>
#include <vector>

namespace client {

/// The bus of kelm-trd-bus; OpenWrt has it in /var/run.
constexpr char kPackagedBus[] = "unix:path=/run/kelm-trd/bus;unix:path=/var/run/kelm-trd/bus";

/// The last DBUS_SESSION_BUS_ADDRESS=... of a file of shell assignments: without quotes and without
/// a shell, so that nothing is expanded. A semicolon belongs to the value, as it does for systemd
/// and in a D-Bus address. Empty without one. Pure.
std::string busAddressIn(const std::string& settings);

/// An address at which the daemon's bus may be, and who names it.
struct BusPlace {
    std::string address;
    std::string source;
};

/// Where to look for the daemon's bus, in this order: \p given alone, else the one that
/// DBUS_SESSION_BUS_ADDRESS names alone, else the daemon's settings file and kPackagedBus. An empty
/// text names none. One thread, as it reads the environment.
std::vector<BusPlace> busPlaces(const std::string& given);

}  // namespace client
