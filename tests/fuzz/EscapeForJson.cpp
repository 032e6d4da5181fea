#include "stb/src/common/JsonEscape.h"
#include "tests/fuzz/Fuzz.h"

#include <json-c/json.h>

#include <cstdio>
#include <string>

namespace {

// The rules one byte at a time, as plainly as they can be written.
std::string escapeByte(char c) {
    const std::string special = "\"\\\b\f\n\r\t";
    const std::string letters = "\"\\bfnrt";
    const std::size_t at = special.find(c);
    if (at != std::string::npos) return {'\\', letters[at]};
    if (c >= 32 && c <= 126) return {c};
    char text[8];
    std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned char>(c));
    return text;
}

// Each byte comes back from a JSON reader as the character of that number, in UTF-8.
std::string asCharacter(char c) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) return {c};
    return {static_cast<char>(0xC0 | (byte >> 6)), static_cast<char>(0x80 | (byte & 0x3F))};
}

}  // namespace

void tryInput(const std::string& bytes) {
    const std::string escaped = TR::Utils::escapeForJson(bytes);
    std::string reference, characters;
    for (const char byte : bytes) {
        reference += escapeByte(byte);
        characters += asCharacter(byte);
    }
    require(escaped == reference);
    json_object* parsed = json_tokener_parse(('"' + escaped + '"').c_str());
    require(parsed != nullptr);
    const std::string back(json_object_get_string(parsed),
                           static_cast<std::size_t>(json_object_get_string_len(parsed)));
    json_object_put(parsed);
    require(back == characters);
}
