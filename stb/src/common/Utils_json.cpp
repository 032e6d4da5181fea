#include "stb/src/common/Utils.h"

#include <array>
#include <cstddef>

namespace TR {
namespace Utils {
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

}  // namespace

// On the way of megabytes of log every few seconds, so plain bytes are copied in runs.
std::string escapeForJson(const std::string& text) {
    std::string result;
    result.reserve(text.size() + text.size() / 16);
    const char* const end = text.data() + text.size();
    for (const char* next = text.data(); next != end; ++next) {
        const char* const run = next;
        while (next != end && kEscapes[static_cast<unsigned char>(*next)] == kPlain) {
            ++next;
        }
        result.append(run, static_cast<std::size_t>(next - run));
        if (next == end) {
            break;
        }
        appendEscape(result, static_cast<unsigned char>(*next));
    }
    return result;
}

}  // namespace Utils
}  // namespace TR
