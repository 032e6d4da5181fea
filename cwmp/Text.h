#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cwmp {

/// Pure functions from text to text; bytes of any kind are taken.

/// The text with U+FFFD for each character that XML 1.0 forbids and for each byte that is not part
/// of valid UTF-8. The CWMP client passes values into its XML as they come.
std::string xmlClean(std::string_view text);
bool isXmlClean(std::string_view text);

/// At most that many bytes of the beginning of valid UTF-8, cut between two characters.
std::string_view headOf(std::string_view text, std::size_t bytes);

/// The end of a text, at most that many bytes, from the beginning of a line on. Where a single line
/// is longer, from a character's beginning on.
std::string_view tailOf(std::string_view text, std::size_t bytes);

/// The bytes behind the daemon's escapes of its log: \n, \t, \", \\ and \u00XX for one byte each.
/// What is not such an escape stays.
std::string unescapeLog(std::string_view text);

/// The text as it has to stand between double quotes of a shell to come out as it is.
std::string escapeForDoubleQuotes(std::string_view text);

}  // namespace cwmp
