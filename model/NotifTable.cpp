#include "model/NotifTable.h"

#include "stb/src/common/Commands.h"
#include "stb/src/common/Files.h"

#include <json-c/json.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <sstream>
#include <utility>

namespace TR {

namespace {

constexpr char kNotificationFile[] = "/tmp/.easycwmp_notif_param_value";
constexpr char kNotifyCommand[] = "ubus -t 1 call tr069 notify";

struct JsonRelease {
    void operator()(json_object* object) const { json_object_put(object); }
};
using JsonPointer = std::unique_ptr<json_object, JsonRelease>;

std::string jsonText(json_object* member) {
    if (member == nullptr) return "null";  // json-c's stand-in for a JSON null
    const char* text = json_object_get_string(member);
    if (text == nullptr) return {};
    if (!json_object_is_type(member, json_type_string)) return text;
    // A string may hold U+0000, which its length knows of and its terminator does not.
    return {text, static_cast<std::size_t>(json_object_get_string_len(member))};
}

}  // namespace

void NotifTable::update() {
    table_.clear();
    std::istringstream lines(Utils::getFileContent(kNotificationFile));
    for (std::string line; std::getline(lines, line);) {
        NotifEntry entry;
        parseJsonLine(line, entry.parameter, entry.value, entry.notification, entry.type);
        // Matches nothing, and a file may hold millions of such lines.
        if (entry.parameter.empty()) continue;
        table_.push_back(std::move(entry));
    }
}

void NotifTable::parseJsonLine(const std::string& line, std::string& parameter, std::string& value,
                               std::string& notification, std::string& type) {
    const JsonPointer object(json_tokener_parse(line.c_str()));
    if (!object) return;
    const std::pair<const char*, std::string*> members[] = {{"parameter", &parameter},
                                                            {"value", &value},
                                                            {"notification", &notification},
                                                            {"type", &type}};
    for (const auto& [key, text] : members) {
        json_object* member = nullptr;
        if (json_object_object_get_ex(object.get(), key, &member) == 0) return;
        *text = jsonText(member);
    }
}

std::string NotifTable::checkValueChange() const {
    std::ostringstream lines;
    for (const NotifEntry& change : pendingChanges_) lines << change << '\n';
    return lines.str();
}

void NotifTable::tryTriggerNotify(const std::map<Address, Value>& updates) {
    const pthread_helper::scoped_lock lock(mutex_);
    pendingChanges_.clear();
    for (const NotifEntry& entry : table_) {
        const auto change = std::find_if(updates.begin(), updates.end(), [&](const auto& update) {
            return update.first.get() == entry.parameter;
        });
        if (change == updates.end()) continue;
        pendingChanges_.push_back(entry);
        pendingChanges_.back().value = change->second.toString();
    }
    if (!pendingChanges_.empty()) triggerNotify();
}

void NotifTable::triggerNotify() {
    // The client answers with checkValueChange; when it does not run, the changes wait for it.
    Utils::runCommand(kNotifyCommand);
}

std::ostream& operator<<(std::ostream& stream, const NotifTable::NotifEntry& entry) {
    stream << R"({ "parameter": ")" << entry.parameter << R"(", "value": ")" << entry.value
           << R"(", "notification": ")" << entry.notification << '"';
    if (!entry.type.empty()) stream << R"(, "type": ")" << entry.type << '"';
    return stream << " }";
}

}  // namespace TR
