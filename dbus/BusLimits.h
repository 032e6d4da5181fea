#pragma once

#include <dbus-c++/dbus.h>

#include <cstdint>
#include <string>
#include <vector>

namespace TR::BusLimits {

/// Largest message of the D-Bus protocol, 128 MiB, and largest array in one, 64 MiB.
constexpr std::uint64_t kProtocolMessageBytes = std::uint64_t{1} << 27;
constexpr std::uint64_t kProtocolArrayBytes = std::uint64_t{1} << 26;

/// Largest message, header included, that this bus is known to carry: the protocol's limit, or the
/// smaller one of the bus's own configuration where that can be found (a dbus-daemon whose command
/// line names it). A bus throws a service off that sends more. Asks the bus and reads files; never
/// throws.
std::uint64_t largestMessage(DBus::Connection& connection);

/// The configuration file that a dbus-daemon with these arguments reads; empty when they name none.
std::string configurationFile(const std::vector<std::string>& arguments);

/// The `max_message_size` of a configuration file's text, files that it includes counted in (the
/// last one counts); dbus-daemon's built-in 32 MiB when it sets none.
std::uint64_t configuredMessageSize(const std::string& configuration);

/// Bytes that a reply with this string, or with these strings as one array, takes in a message,
/// room for its header included.
std::uint64_t replyBytes(const std::string& text);
std::uint64_t replyBytes(const std::vector<std::string>& list);

}  // namespace TR::BusLimits
