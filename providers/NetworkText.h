#pragma once

#include "providers/NetworkDataProvider.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// From the texts of the kernel, of `iw` and of the WiFi settings file to what is published. Pure:
// any bytes may come in, nothing throws, any thread may call.
namespace TR::NetworkText {

/// The state of an interface from its flags (IFF_UP, IFF_RUNNING) and its operstate file.
NetworkDataProvider::Interface::Status status(unsigned flags, const std::string& operstate);

/// From the duplex file; anything but "full" and "half" is Auto.
NetworkDataProvider::Interface::DuplexMode duplexMode(const std::string& duplex);

/// Mbit/s from the speed file; 0 unless it holds one known speed and nothing else.
std::uint64_t bitRate(const std::string& speed);

/// From the lines of a WiFi settings file, without their line feeds: `key=value`. White space round
/// a key is ignored; the value is everything behind the equals sign, as a passphrase may begin or
/// end with a blank. The last of a repeated key wins; comments and other lines are skipped.
NetworkDataProvider::Interface::WiFiConfig wiFiConfig(const std::vector<std::string>& lines);

/// From the lines, with or without their line feeds, that `iw INTERFACE link` prints. Fractions are
/// cut off.
NetworkDataProvider::Interface::WiFiStatus wiFiStatus(const std::vector<std::string>& lines);

}  // namespace TR::NetworkText
