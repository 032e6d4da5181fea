#include "stb/src/common/JsonEscape.h"

#include <json-c/json.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// One byte at a time, as the rule is written.
std::string escapeByte(unsigned char byte) {
    switch (byte) {
        case '"':
            return "\\\"";
        case '\\':
            return "\\\\";
        case 8:
            return "\\b";
        case 12:
            return "\\f";
        case 10:
            return "\\n";
        case 13:
            return "\\r";
        case 9:
            return "\\t";
        default:
            break;
    }
    if (byte >= 32 && byte <= 126) return std::string(1, static_cast<char>(byte));
    char text[8];
    std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned>(byte));
    return text;
}

// Each byte comes back from a JSON reader as the character of that number, in UTF-8.
std::string asCharacters(const std::string& bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0 | (byte >> 6));
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::string escaped = TR::Utils::escapeForJson(bytes);
    std::string reference;
    for (const char byte : bytes) reference += escapeByte(static_cast<unsigned char>(byte));
    if (escaped != reference) std::abort();
    json_object* parsed = json_tokener_parse(('"' + escaped + '"').c_str());
    if (parsed == nullptr) std::abort();
    const std::string back(json_object_get_string(parsed),
                           static_cast<std::size_t>(json_object_get_string_len(parsed)));
    json_object_put(parsed);
    if (back != asCharacters(bytes)) std::abort();
    return 0;
}
