#include "trctl/Text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <iterator>

namespace trctl {

namespace {

struct Character {
    char32_t code;
    std::size_t length;
    bool isValid;
};

// Bytes of a character that begins with this one; 0 when none does.
std::size_t lengthOf(unsigned char first) {
    if (first < 0x80) return 1;
    if (first >= 0xc2 && first <= 0xdf) return 2;
    if (first >= 0xe0 && first <= 0xef) return 3;
    return first >= 0xf0 && first <= 0xf4 ? 4 : 0;
}

// Surrogates and overlong forms are not characters.
bool isInRange(char32_t code, std::size_t length) {
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    return code >= kSmallest[length] && code <= 0x10ffff && (code < 0xd800 || code > 0xdfff);
}

// The first character of a text that is not empty.
Character firstOf(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    const Character bad{first, 1, false};
    const std::size_t length = lengthOf(first);
    if (length == 1) return {first, 1, true};
    if (length == 0 || length > text.size()) return bad;
    char32_t code = first & (0x7fU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xc0U) != 0x80U) return bad;
        code = (code << 6U) | (byte & 0x3fU);
    }
    return isInRange(code, length) ? Character{code, length, true} : bad;
}

struct Range {
    char32_t first;
    char32_t last;
};

// Both sets of control characters, marks of direction, separators of lines, invisible tags.
constexpr Range kObeyed[] = {{0x00, 0x1f},     {0x7f, 0x9f},     {0x61c, 0x61c},
                             {0x200e, 0x200f}, {0x2028, 0x202e}, {0x2066, 0x2069},
                             {0xfeff, 0xfeff}, {0xfff9, 0xfffb}, {0xe0000, 0xe007f}};

bool isObeyed(char32_t code) {
    return std::any_of(
        std::begin(kObeyed), std::end(kObeyed),
        [code](const Range& range) { return code >= range.first && code <= range.last; });
}

std::string hex(const char* ahead, int digits, char32_t code) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*x", digits, static_cast<unsigned>(code));
    return std::string(ahead) + text;
}

std::string escapeOf(const Character& character) {
    switch (character.code) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            break;
    }
    if (!character.isValid || character.code < 0x80) return hex("\\x", 2, character.code);
    return character.code > 0xffff ? hex("\\U", 8, character.code) : hex("\\u", 4, character.code);
}

// JSON knows 16 bits at a time.
std::string jsonEscapeOf(char32_t code) {
    if (code <= 0xffff) return hex("\\u", 4, code);
    const char32_t above = code - 0x10000;
    return hex("\\u", 4, 0xd800 + (above >> 10U)) + hex("\\u", 4, 0xdc00 + (above & 0x3ffU));
}

template <typename Take>
void eachCharacter(std::string_view text, Take take) {
    while (!text.empty()) {
        const Character character = firstOf(text);
        take(character, text.substr(0, character.length));
        text.remove_prefix(character.length);
    }
}

// wcwidth() knows the locale's characters only; an unknown one is taken as one column.
std::size_t columnsOf(const Character& character) {
    const int columns = wcwidth(static_cast<wchar_t>(character.code));
    return columns < 0 ? 1 : static_cast<std::size_t>(columns);
}

}  // namespace

std::string escaped(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    eachCharacter(text, [&](const Character& character, std::string_view bytes) {
        if (!character.isValid || isObeyed(character.code)) {
            line += escapeOf(character);
        } else {
            line += bytes;
            if (character.code == '\\') line += '\\';
        }
    });
    return line;
}

// Line ends and blanks between the strings stay.
std::string escapedJson(std::string_view json) {
    std::string text;
    text.reserve(json.size());
    bool inString = false;
    bool isEscape = false;
    eachCharacter(json, [&](const Character& character, std::string_view bytes) {
        const bool isControl = character.code < 0x20;
        if (!character.isValid || (isObeyed(character.code) && (inString || !isControl)))
            text += jsonEscapeOf(character.isValid ? character.code : 0xfffd);
        else
            text += bytes;
        if (character.code == '"' && !isEscape) inString = !inString;
        isEscape = inString && character.code == '\\' && !isEscape;
    });
    return text;
}

std::size_t width(std::string_view text) {
    std::size_t columns = 0;
    eachCharacter(text, [&](const Character& character, std::string_view) {
        columns += columnsOf(character);
    });
    return columns;
}

std::string padded(std::string text, std::size_t columns) {
    const std::size_t taken = width(text);
    if (taken < columns) text.append(columns - taken, ' ');
    return text;
}

std::string shortened(const std::string& text, std::size_t columns, const std::string& mark) {
    if (width(text) <= columns) return text;
    std::string kept;
    const std::size_t room = columns - std::min(columns, width(mark));
    std::size_t taken = 0;
    std::string_view rest = text;
    while (!rest.empty()) {
        const Character character = firstOf(rest);
        taken += columnsOf(character);
        if (taken > room) break;
        kept += rest.substr(0, character.length);
        rest.remove_prefix(character.length);
    }
    return kept + mark;
}

std::string shortenedAtLeft(const std::string& text, std::size_t columns) {
    std::size_t kept = width(text);
    if (kept <= columns) return text;
    const std::string mark = std::string("...").substr(0, columns);
    const std::size_t room = columns - mark.size();
    std::string_view rest = text;
    while (kept > room) {
        const Character character = firstOf(rest);
        kept -= columnsOf(character);
        rest.remove_prefix(character.length);
    }
    // A level that begins right here is whole; something was cut, so there is one more before it.
    const std::size_t point = text.find('.', text.size() - rest.size() - 1);
    if (point != std::string::npos && point + 1 < text.size())
        rest = std::string_view(text).substr(point + 1);
    return mark + std::string(rest);
}

bool isUtf8(std::string_view text) {
    bool is = true;
    eachCharacter(
        text, [&](const Character& character, std::string_view) { is = is && character.isValid; });
    return is;
}

}  // namespace trctl
