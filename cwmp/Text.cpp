#include "cwmp/Text.h"

#include <algorithm>
#include <cstdint>

namespace cwmp {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Character {
    std::size_t bytes;  ///< 1 also for a byte that begins no valid character
    std::uint32_t code;
    bool isValid;
};

struct Form {
    std::size_t bytes;
    std::uint32_t lowest;      ///< a smaller code has a shorter form
    unsigned char mask, lead;  ///< of the first byte
};

constexpr Form kForms[] = {
    {1, 0, 0x80, 0x00}, {2, 0x80, 0xE0, 0xC0}, {3, 0x800, 0xF0, 0xE0}, {4, 0x10000, 0xF8, 0xF0}};

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool isUnicode(std::uint32_t code) {
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

Character decode(std::string_view text, const Form& form) {
    const auto lead = static_cast<unsigned char>(text.front());
    std::uint32_t code = lead & static_cast<unsigned char>(~form.mask);
    if (text.size() < form.bytes) return {1, 0, false};
    for (std::size_t i = 1; i < form.bytes; ++i) {
        if (!isContinuation(text[i])) return {1, 0, false};
        code = code << 6U | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    const bool isValid = code >= form.lowest && isUnicode(code);
    return {isValid ? form.bytes : 1, code, isValid};
}

Character firstOf(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    for (const Form& form : kForms)
        if ((lead & form.mask) == form.lead) return decode(text, form);
    return {1, 0, false};
}

bool isAllowedInXml(const Character& character) {
    const std::uint32_t code = character.code;
    if (!character.isValid || code == 0xFFFE || code == 0xFFFF) return false;
    return code >= 0x20 || code == '\t' || code == '\n' || code == '\r';
}

// The length of the beginning that needs no change.
std::size_t cleanLength(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size()) {
        const Character character = firstOf(text.substr(length));
        if (!isAllowedInXml(character)) break;
        length += character.bytes;
    }
    return length;
}

constexpr struct {
    char letter, byte;
} kEscapes[] = {{'n', '\n'}, {'t', '\t'}, {'r', '\r'},  {'b', '\b'},
                {'f', '\f'}, {'"', '"'},  {'\\', '\\'}, {'/', '/'}};

int hexDigit(char letter) {
    if (letter >= '0' && letter <= '9') return letter - '0';
    if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
    if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
    return -1;
}

// Reads the escape behind a backslash; the number of its characters, 0 for anything else.
std::size_t readEscape(std::string_view text, char& byte) {
    constexpr std::string_view kHexStart = "u00";
    if (text.empty()) return 0;
    for (const auto& escape : kEscapes) {
        if (text.front() == escape.letter) {
            byte = escape.byte;
            return 1;
        }
    }
    if (text.size() < 5 || text.substr(0, kHexStart.size()) != kHexStart) return 0;
    const int high = hexDigit(text[3]), low = hexDigit(text[4]);
    if (high < 0 || low < 0) return 0;
    byte = static_cast<char>(high * 16 + low);
    return 5;
}

}  // namespace

std::string xmlClean(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t clean = cleanLength(text);
        result += text.substr(0, clean);
        text.remove_prefix(clean);
        if (text.empty()) break;
        result += kReplacement;
        text.remove_prefix(firstOf(text).bytes);
    }
    return result;
}

bool isXmlClean(std::string_view text) {
    return cleanLength(text) == text.size();
}

std::string_view headOf(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    while (bytes > 0 && isContinuation(text[bytes])) --bytes;
    return text.substr(0, bytes);
}

std::string_view tailOf(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) return text;
    std::size_t start = text.size() - bytes;
    const std::size_t lineEnd = text.find('\n', start - 1);
    if (lineEnd + 1 < text.size() && lineEnd != std::string_view::npos)
        return text.substr(lineEnd + 1);
    while (start < text.size() && isContinuation(text[start])) ++start;
    return text.substr(start);
}

std::string unescapeLog(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t backslash = std::min(text.find('\\'), text.size());
        result += text.substr(0, backslash);
        text.remove_prefix(backslash);
        if (text.empty()) break;
        char byte = '\\';
        const std::size_t escape = readEscape(text.substr(1), byte);
        result += byte;
        text.remove_prefix(1 + escape);
    }
    return result;
}

std::string escapeForDoubleQuotes(std::string_view text) {
    constexpr std::string_view kSpecial = "\\\"$`";
    std::string result;
    result.reserve(text.size());
    for (const char letter : text) {
        if (kSpecial.find(letter) != std::string_view::npos) result += '\\';
        result += letter;
    }
    return result;
}

}  // namespace cwmp
