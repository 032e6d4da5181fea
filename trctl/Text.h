#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace trctl {

/// Texts on their way to a terminal. What comes from the bus may hold anything. Escaped are:
/// control characters of both sets, DEL, characters that change the direction of writing, and bytes
/// that are not UTF-8.

/// As \n, \x1b or \u202e; a backslash becomes two. The result is always one line.
std::string escaped(std::string_view text);

/// The same for a text that is JSON, with JSON's escapes inside its strings: the result means the
/// same to a reader of JSON.
std::string escapedJson(std::string_view json);

/// The columns that a terminal takes for it.
std::size_t width(std::string_view text);

/// Padded with blanks to that many columns.
std::string padded(std::string text, std::size_t columns);

/// All of it is UTF-8.
bool isUtf8(std::string_view text);

/// Cut at its left to that many columns, where a level of an address begins if that is possible,
/// with "..." in its place.
std::string shortenedAtLeft(const std::string& text, std::size_t columns);

/// Cut between characters to that many columns, the last of which then holds \p mark.
std::string shortened(const std::string& text, std::size_t columns, const std::string& mark);

}  // namespace trctl
