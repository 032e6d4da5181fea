#pragma once

#include "cwmp/Types.h"

#include <cstddef>
#include <optional>
#include <string>

namespace cwmp {

/// A value as the ACS sees it.
struct Seen {
    std::string value;
    Xsd type = Xsd::String;
};

/// Longer values cost the CWMP client the square of their length.
constexpr std::size_t kLongestLog = std::size_t{32} * 1024;
constexpr std::size_t kLongestValue = std::size_t{64} * 1024;

/// The daemon's text of a parameter as the ACS sees it: by its type, a secret as empty, the log's
/// end, without what XML forbids, and not too long. A text that does not fit its type goes out as a
/// string. Pure, but for one log line over a value that is cut.
Seen toAcs(const std::string& parameter, const std::string& text);

/// What the ACS sent as the daemon takes it; nothing when it does not fit the type: wrong form,
/// sign or range, a character that XML forbids.
std::optional<std::string> fromAcs(Xsd type, const std::string& text);

/// True when both texts of the daemon stand for one value of the type: 007 is 7.
bool isSameValue(Xsd type, const std::string& one, const std::string& other);

}  // namespace cwmp
