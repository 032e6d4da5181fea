#include "trctl/JsonOutput.h"

#include "trctl/Text.h"

#include <json-c/json.h>

#include <map>
#include <memory>

namespace trctl {

namespace {

struct Drop {
    void operator()(json_object* object) const { json_object_put(object); }
};
using Object = std::unique_ptr<json_object, Drop>;

json_object* jsonOf(const std::string& text) {
    return json_object_new_string_len(text.data(), static_cast<int>(text.size()));
}

json_object* jsonOf(const std::optional<std::string>& text) {
    return text ? jsonOf(*text) : nullptr;
}

std::string textOf(const Object& object) {
    return escapedJson(json_object_to_json_string_ext(
        object.get(),
        JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED | JSON_C_TO_STRING_NOSLASHESCAPE));
}

template <typename Row, typename Shape>
std::string arrayOf(const std::vector<Row>& rows, Shape shape) {
    const Object array(json_object_new_array());
    for (const Row& row : rows) json_object_array_add(array.get(), shape(row));
    return textOf(array);
}

json_object* shapeOf(const LongRow& row) {
    json_object* object = json_object_new_object();
    json_object_object_add(object, "address", jsonOf(row.address));
    json_object_object_add(object, "writable", json_object_new_boolean(row.isWritable ? 1 : 0));
    json_object_object_add(object, "forcedInform",
                           json_object_new_boolean(row.isForcedInform ? 1 : 0));
    json_object_object_add(object, "type", jsonOf(row.type));
    json_object_object_add(object, "value", isObject(row.address) ? nullptr : jsonOf(row.value));
    return object;
}

// Of a line that was checked. A value that is not escaped may bring members, which need not be JSON
// when json-c prints them (NaN); the client reads the texts only.
void copyTexts(const std::string& line, json_object* object) {
    const Object parsed(json_tokener_parse(line.c_str()));
    json_object_object_foreach(parsed.get(), key, member) {
        if (json_object_is_type(member, json_type_string))
            json_object_object_add(object, key, json_object_get(member));
    }
}

json_object* shapeOf(const ChangeLine& line) {
    json_object* object = json_object_new_object();
    if (line.fault.empty()) {
        copyTexts(line.text, object);
        return object;
    }
    json_object_object_add(object, "bad", jsonOf(line.fault));
    json_object_object_add(object, "line", jsonOf(line.text));
    return object;
}

// The object of this name in another, made when it is not there.
json_object* enter(json_object* parent, const std::string& name) {
    for (const std::string& key : {name, name + '.'}) {
        json_object* child = nullptr;
        if (json_object_object_get_ex(parent, key.c_str(), &child) == 0) {
            child = json_object_new_object();
            json_object_object_add(parent, key.c_str(), child);
        }
        if (json_object_is_type(child, json_type_object)) return child;
    }
    return parent;  // the second name is never a parameter's
}

void insert(json_object* top, const Leaf& leaf) {
    json_object* object = top;
    std::size_t at = 0;
    for (std::size_t point = leaf.address.find('.'); point != std::string::npos;
         point = leaf.address.find('.', at)) {
        object = enter(object, leaf.address.substr(at, point - at));
        at = point + 1;
    }
    if (at < leaf.address.size())
        json_object_object_add(object, leaf.address.substr(at).c_str(), jsonOf(leaf.value));
}

}  // namespace

std::string listJson(const Addresses& addresses) {
    return arrayOf(
        addresses, [](const std::string& address) { return jsonOf(address); });
}

std::string listJson(const std::vector<LongRow>& rows) {
    return arrayOf(
        rows, [](const LongRow& row) { return shapeOf(row); });
}

std::string treeJson(const std::vector<Leaf>& leaves) {
    const Object top(json_object_new_object());
    // A parameter before the object of the same name, which then keeps its point.
    std::map<std::string, const Leaf*> sorted;
    for (const Leaf& leaf : leaves) sorted[leaf.address] = &leaf;
    for (const auto& [address, leaf] : sorted) insert(top.get(), *leaf);
    return textOf(top);
}

std::string diffJson(const std::vector<Difference>& differences) {
    return arrayOf(
        differences,
        [](const Difference& difference) {
            json_object* object = json_object_new_object();
            json_object_object_add(object, "address", jsonOf(difference.address));
            json_object_object_add(object, "file", jsonOf(difference.file));
            json_object_object_add(object, "daemon", jsonOf(difference.daemon));
            return object;
        });
}

std::string changesJson(const std::vector<ChangeLine>& lines) {
    return arrayOf(
        lines, [](const ChangeLine& line) { return shapeOf(line); });
}

}  // namespace trctl
