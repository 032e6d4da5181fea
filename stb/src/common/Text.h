#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Texts as bytes: they may hold NUL and invalid UTF-8. Pure; any thread may call.
namespace TR::Utils {

/// The text without the white space (isspace) at its end, or at both ends.
std::string trimRight(std::string text);
std::string trim(std::string text);

std::string toLowerString(std::string text);
std::string toUpperString(std::string text);
void toLower(std::string& text);
void toUpper(std::string& text);

/// The decimal number at the text's start: white space, a sign, digits. None without a digit or
/// beyond 64 bits. \p end, if any, becomes the position behind it.
std::optional<std::int64_t> leadingNumber(const std::string& text, std::size_t* end = nullptr);

enum class LineFeeds { Drop, Keep };

/// The lines of a text in order, at most `maximum` of them unless it is 0. A last line without a
/// line feed counts.
std::vector<std::string> splitLines(const std::string& text, LineFeeds lineFeeds,
                                    std::size_t maximum = 0);

/// printf into a string of exactly the needed length; empty when the format cannot be carried out.
std::string format(const char* text, ...) __attribute__((format(printf, 1, 2)));

}  // namespace TR::Utils
