#include "stb/src/common/JsonEscape.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

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

constexpr std::ptrdiff_t kWordBytes = sizeof(std::uint64_t);
constexpr std::uint64_t everyByte(unsigned char byte) {
    return byte * std::uint64_t{0x0101010101010101};
}

/// True when no byte of the word needs an escape. Each term sets a byte's top bit for one kind of
/// such a byte; borrows and carries come from bytes that are such ones themselves.
bool isPlainWord(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    const std::uint64_t control = word - everyByte(kFirstPrintable);
    const std::uint64_t deleteByte = word + everyByte(0x80 - kLastPrintable - 1);
    const std::uint64_t quote = (word ^ everyByte('"')) - everyByte(1);
    const std::uint64_t backslash = (word ^ everyByte('\\')) - everyByte(1);
    return ((word | control | deleteByte | quote | backslash) & everyByte(0x80)) == 0;
}

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

// A word at a time: the first byte that does not stand for itself, or the end.
const char* endOfPlainRun(const char* next, const char* end) {
    while (end - next >= kWordBytes && isPlainWord(next)) next += kWordBytes;
    while (next != end && kEscapes[static_cast<unsigned char>(*next)] == kPlain) ++next;
    return next;
}

}  // namespace

// On the way of megabytes of log every few seconds, so plain bytes are found and copied in runs.
std::string escapeForJson(std::string_view text) {
    std::string result;
    result.reserve(text.size() + text.size() / 16);
    const char* next = text.data();
    const char* const end = next + text.size();
    while (next != end) {
        const char* const run = next;
        next = endOfPlainRun(next, end);
        result.append(run, static_cast<std::size_t>(next - run));
        while (next != end && kEscapes[static_cast<unsigned char>(*next)] != kPlain)
            appendEscape(result, static_cast<unsigned char>(*next++));
    }
    return result;
}

}  // namespace TR::Utils
