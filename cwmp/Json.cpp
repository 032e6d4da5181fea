#include "cwmp/Json.h"

#include "client/Json.h"

#include <json-c/json.h>

namespace cwmp {

std::optional<Texts> parseLine(const std::string& line) {
    std::string error;
    return client::parseSaved(line, error);
}

std::string jsonLine(std::initializer_list<std::pair<const char*, std::string_view>> members) {
    json_object* const object = json_object_new_object();
    for (const auto& [key, value] : members) {
        json_object* const text =
            json_object_new_string_len(value.data(), static_cast<int>(value.size()));
        json_object_object_add_ex(object, key, text, JSON_C_OBJECT_ADD_KEY_IS_NEW);
    }
    std::string line = json_object_to_json_string_ext(object, JSON_C_TO_STRING_SPACED);
    json_object_put(object);
    return line;
}

}  // namespace cwmp
