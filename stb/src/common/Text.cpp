#include "stb/src/common/Text.h"

#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <stdexcept>

namespace TR::Utils {

namespace {

// Addresses and hardware addresses fit; only a longer result is formatted a second time.
constexpr std::size_t kFirstTrySize = 512;

bool isBlack(unsigned char byte) {
    return std::isspace(byte) == 0;
}

}  // namespace

std::string trimRight(std::string text) {
    text.erase(std::find_if(text.rbegin(), text.rend(), isBlack).base(), text.end());
    return text;
}

std::string trim(std::string text) {
    text = trimRight(std::move(text));
    text.erase(text.begin(), std::find_if(text.begin(), text.end(), isBlack));
    return text;
}

std::string toLowerString(std::string text) {
    toLower(text);
    return text;
}

std::string toUpperString(std::string text) {
    toUpper(text);
    return text;
}

void toLower(std::string& text) {
    for (char& byte : text)
        byte = static_cast<char>(std::tolower(static_cast<unsigned char>(byte)));
}

void toUpper(std::string& text) {
    for (char& byte : text)
        byte = static_cast<char>(std::toupper(static_cast<unsigned char>(byte)));
}

std::optional<std::int64_t> leadingNumber(const std::string& text, std::size_t* end) {
    try {
        return std::stoll(text, end, 10);
    } catch (const std::logic_error&) {  // no digit, or out of range
        return std::nullopt;
    }
}

std::vector<std::string> splitLines(const std::string& text, LineFeeds lineFeeds,
                                    std::size_t maximum) {
    std::vector<std::string> lines;
    const std::size_t kept = lineFeeds == LineFeeds::Keep ? 1 : 0;
    std::size_t begin = 0;
    while (begin < text.size() && (maximum == 0 || lines.size() < maximum)) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.emplace_back(text, begin, end - begin + kept);
        begin = end + 1;
    }
    return lines;
}

std::string format(const char* text, ...) {
    char buffer[kFirstTrySize];
    std::va_list arguments;
    va_start(arguments, text);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(buffer, sizeof buffer, text, arguments);
    va_end(arguments);
    std::string result(static_cast<std::size_t>(std::max(length, 0)), '\0');
    if (result.size() < sizeof buffer)
        std::copy_n(buffer, result.size(), result.begin());
    else
        std::vsnprintf(result.data(), result.size() + 1, text, again);
    va_end(again);
    return result;
}

}  // namespace TR::Utils
