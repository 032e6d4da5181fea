#include "stb/src/common/JsonEscape.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace TR::Utils {
namespace {

constexpr char kPlain = 0;
constexpr char kHex = 'u';
constexpr unsigned kFirstPrintable = 32;
constexpr unsigned kLastPrintable = 126;

constexpr std::array<char, 256> makeEscapes() {
    std::array<char, 256> escapes{};
    for (unsigned byte = 0; byte < escapes.size(); ++byte) {
        const bool printable = byte >= kFirstPrintable && byte <= kLastPrintable;
        escapes[byte] = printable ? kPlain : kHex;
    }
    escapes['"'] = '"';
    escapes['\\'] = '\\';
    escapes['\b'] = 'b';
    escapes['\f'] = 'f';
    escapes['\n'] = 'n';
    escapes['\r'] = 'r';
    escapes['\t'] = 't';
    return escapes;
}

// The character after the backslash, or kPlain for a byte that stands for itself.
constexpr std::array<char, 256> kEscapes = makeEscapes();

void appendEscape(std::string& result, unsigned char byte) {
    constexpr const char* kDigits = "0123456789abcdef";
    const char escape = kEscapes[byte];
    if (escape != kHex) {
        const char text[] = {'\\', escape};
        result.append(text, sizeof text);
        return;
    }
    const char text[] = {'\\', 'u', '0', '0', kDigits[byte >> 4], kDigits[byte & 15]};
    result.append(text, sizeof text);
}

constexpr std::array<unsigned char, 256> makeLengths() {
    std::array<unsigned char, 256> lengths{};
    for (std::size_t byte = 0; byte < lengths.size(); ++byte)
        lengths[byte] = kEscapes[byte] == kPlain ? 1 : kEscapes[byte] == kHex ? 6 : 2;
    return lengths;
}

constexpr std::array<unsigned char, 256> kLengths = makeLengths();

std::size_t escapedLength(std::string_view text) {
    std::size_t length = 0;
    for (const char byte : text) length += kLengths[static_cast<unsigned char>(byte)];
    return length;
}

bool isPlain(char byte) {
    return kEscapes[static_cast<unsigned char>(byte)] == kPlain;
}

}  // namespace

// Megabytes of log pass here every few seconds: plain bytes are copied in runs, and the result
// takes no more memory than it needs, however many bytes are escaped.
std::string escapeForJson(std::string_view text) {
    std::string result;
    result.reserve(escapedLength(text));
    const char* next = text.data();
    const char* const end = next + text.size();
    while (next != end) {
        const char* const special = std::find_if_not(next, end, isPlain);
        result.append(next, special);
        next = special;
        while (next != end && !isPlain(*next))
            appendEscape(result, static_cast<unsigned char>(*next++));
    }
    return result;
}

}  // namespace TR::Utils
