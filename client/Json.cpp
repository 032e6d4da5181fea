#include "client/Json.h"

#include <json-c/json.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace client {

namespace {

struct Drop {
    void operator()(json_object* object) const { json_object_put(object); }
    void operator()(json_tokener* tokener) const { json_tokener_free(tokener); }
};
using Object = std::unique_ptr<json_object, Drop>;
using Tokener = std::unique_ptr<json_tokener, Drop>;

std::string textOf(json_object* string) {
    return {json_object_get_string(string),
            static_cast<std::size_t>(json_object_get_string_len(string))};
}

std::string lineOf(const std::string& text, std::size_t offset) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size()));
    return std::to_string(1 + std::count(text.begin(), end, '\n'));
}

// The whole text must be one JSON object; json-c takes a NUL for the end of it.
Object parseObject(const std::string& text, std::string& error) {
    constexpr auto kLargest = static_cast<std::size_t>(std::numeric_limits<int>::max() - 1);
    if (text.size() > kLargest || text.find('\0') != std::string::npos) {
        error = text.size() > kLargest ? "it is too large" : "it holds a NUL";
        return nullptr;
    }
    const Tokener tokener(json_tokener_new());
    json_tokener_set_flags(tokener.get(), JSON_TOKENER_STRICT | JSON_TOKENER_VALIDATE_UTF8);
    // The NUL is parsed too, so that a truncated text is an error.
    Object object(
        json_tokener_parse_ex(tokener.get(), text.c_str(), static_cast<int>(text.size() + 1)));
    const json_tokener_error result = json_tokener_get_error(tokener.get());
    if (result != json_tokener_success) {
        error = "line " + lineOf(text, json_tokener_get_parse_end(tokener.get())) + ": " +
                json_tokener_error_desc(result);
        return nullptr;
    }
    if (!json_object_is_type(object.get(), json_type_object)) {
        error = "not a JSON object";
        return nullptr;
    }
    return object;
}

json_object* newText(const std::string& text) {
    return json_object_new_string_len(text.data(), static_cast<int>(text.size()));
}

}  // namespace

std::string toJson(const Values& values) {
    const Object object(json_object_new_object());
    for (const auto& [address, value] : values)
        json_object_object_add(object.get(), address.c_str(), newText(value));
    return json_object_to_json_string_ext(object.get(), JSON_C_TO_STRING_PRETTY |
                                                            JSON_C_TO_STRING_SPACED |
                                                            JSON_C_TO_STRING_NOSLASHESCAPE);
}

void JsonLine::addText(const char* name, const std::string* text) {
    const Object object(text == nullptr ? nullptr : newText(*text));
    addRaw(name, json_object_to_json_string_ext(object.get(), JSON_C_TO_STRING_NOSLASHESCAPE));
}

void JsonLine::addRaw(const char* name, const char* json) {
    if (line_.size() > 1) line_ += ',';
    line_.append(" \"").append(name).append("\": ").append(json);
}

std::optional<std::map<std::string, std::string>> parseSaved(const std::string& json,
                                                             std::string& error) {
    const Object object = parseObject(json, error);
    if (object == nullptr) return std::nullopt;
    std::map<std::string, std::string> values;
    json_object_object_foreach(object.get(), address, value) {
        if (!json_object_is_type(value, json_type_string)) {
            error = std::string("the value of \"") + address + "\" is not a text";
            return std::nullopt;
        }
        values[address] = textOf(value);
    }
    return values;
}

std::string faultOfChangeLine(const std::string& line) {
    std::string error;
    const Object object = parseObject(line, error);
    if (object == nullptr) return error;
    for (const char* key : {"parameter", "value", "notification"}) {
        json_object* member = nullptr;
        if (json_object_object_get_ex(object.get(), key, &member) == 0)
            return std::string("it has no \"") + key + '"';
        if (!json_object_is_type(member, json_type_string))
            return std::string("\"") + key + "\" is not a text";
    }
    return {};
}

}  // namespace client
