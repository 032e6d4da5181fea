#pragma once

#include <optional>
#include <string>

namespace cwmp {

/// The standard's word for a time that is not known.
constexpr char kUnknownTime[] = "0001-01-01T00:00:00Z";

/// "2026-11-22 00:00:00 UTC", or an xsd:dateTime, as xsd:dateTime in UTC without fractions; nothing
/// for any other text.
std::optional<std::string> dateTimeToAcs(const std::string& text);

/// An xsd:dateTime as the daemon writes times, in UTC: "2026-11-22 00:00:00 UTC". Fractions of a
/// second are dropped, a time without a zone is in UTC.
std::optional<std::string> dateTimeFromAcs(const std::string& text);

}  // namespace cwmp
