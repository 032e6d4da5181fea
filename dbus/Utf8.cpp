#include "dbus/Utf8.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace TR {

namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";  // U+FFFD

unsigned char byteAt(std::string_view text, std::size_t position) {
    return static_cast<unsigned char>(text[position]);
}

bool isContinuation(std::string_view text, std::size_t position) {
    return position < text.size() && (byteAt(text, position) & 0xC0U) == 0x80U;
}

/// Lengths and the bounds of the second byte by the first one, after table 3-7 of the Unicode
/// standard.
struct Sequence {
    unsigned char firstLow, firstHigh, secondLow, secondHigh;
    std::size_t length;
};
constexpr Sequence kSequences[] = {{0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
                                   {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3},
                                   {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
                                   {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};

bool continues(std::string_view text, std::size_t position, const Sequence& sequence) {
    if (!isContinuation(text, position + 1)) return false;
    const unsigned char second = byteAt(text, position + 1);
    if (second < sequence.secondLow || second > sequence.secondHigh) return false;
    for (std::size_t i = 2; i < sequence.length; ++i)
        if (!isContinuation(text, position + i)) return false;
    return true;
}

/// Length of the valid character at the position; 0 for an invalid one.
std::size_t characterLength(std::string_view text, std::size_t position) {
    const unsigned char first = byteAt(text, position);
    if (first < 0x80) return first == 0 ? 0 : 1;
    for (const Sequence& sequence : kSequences) {
        if (first < sequence.firstLow || first > sequence.firstHigh) continue;
        return continues(text, position, sequence) ? sequence.length : 0;
    }
    return 0;
}

/// True for eight plain ASCII bytes without a NUL, the usual case.
bool isPlainWord(const char* bytes) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080U;
    constexpr std::uint64_t kLowBits = 0x0101010101010101U;
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return ((word | (word - kLowBits)) & kHighBits) == 0;
}

/// Position of the first bad byte at or after the start; else the size.
std::size_t findBadByte(std::string_view text, std::size_t position) {
    while (position < text.size()) {
        if (position + 8 <= text.size() && isPlainWord(text.data() + position)) {
            position += 8;
            continue;
        }
        const std::size_t length = characterLength(text, position);
        if (length == 0) return position;
        position += length;
    }
    return text.size();
}

}  // namespace

std::string toValidUtf8(std::string text) {
    std::size_t bad = findBadByte(text, 0);
    if (bad == text.size()) return text;
    std::string repaired;
    repaired.reserve(text.size() + text.size() / 8);
    std::size_t copied = 0;
    while (bad < text.size()) {
        repaired.append(text, copied, bad - copied).append(kReplacement);
        copied = bad + 1;
        bad = findBadByte(text, copied);
    }
    return repaired.append(text, copied, std::string::npos);
}

}  // namespace TR
