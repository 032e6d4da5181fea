#include "cwmp/Watch.h"

#include "cwmp/Conversion.h"

#include <algorithm>
#include <stdexcept>

namespace cwmp {

namespace {

// The position is the attribute.
constexpr const char* kLists[] = {"@notifications[0].none", "@notifications[0].passive",
                                  "@notifications[0].active"};
constexpr char kSection[] = "notifications";

Row rowOf(const std::string& parameter, const std::string& text, int notification) {
    Seen seen = toAcs(parameter, text);
    return {parameter, std::move(seen.value), std::to_string(notification), xsdName(seen.type)};
}

}  // namespace

Attributes Watch::attributes() {
    Attributes attributes;
    for (int notification : {Attributes::kOff, Attributes::kPassive, Attributes::kActive}) {
        const auto list = model_.options().find(kLists[notification]);
        if (list == model_.options().end()) continue;
        for (const std::string& name : list->second) attributes.add(name, notification);
    }
    return attributes;
}

bool Watch::carryOut(const std::vector<Attributes::Step>& steps) {
    return std::all_of(
        steps.begin(), steps.end(),
        [&](const Attributes::Step& step) {
            return model_.uci().change(step.isAddition ? "add_list" : "del_list",
                                       kLists[step.notification], step.name);
        });
}

bool Watch::setAttributes(const std::vector<std::pair<std::string, int>>& wanted) {
    Attributes attributes = this->attributes();
    bool isGood =
        model_.options().count("@notifications[0]") != 0 || model_.uci().addSection(kSection);
    for (const auto& [name, notification] : wanted)
        isGood = isGood && carryOut(attributes.set(name, notification));
    isGood = isGood && model_.uci().commit();
    if (!isGood) model_.uci().revert();
    model_.forgetOptions();
    return isGood;
}

DataModel::Parameters Watch::watched(const Attributes& attributes) {
    DataModel::Parameters parameters = model_.treeFor("").parametersWithin("");
    const auto isOff = [&](const std::string* name) {
        return attributes.of(*name) == Attributes::kOff;
    };
    parameters.erase(std::remove_if(parameters.begin(), parameters.end(), isOff), parameters.end());
    return parameters;
}

// A value that the daemon refuses to send stays as the ACS knows it.
Rows Watch::rowsOf(const DataModel::Parameters& parameters, const Attributes& attributes,
                   const std::string& earlier) {
    Rows rows;
    rows.reserve(parameters.size());
    model_.ask(DataModel::Question::Value, parameters,
               [&](const std::string& name, const std::optional<std::string>& text) {
                   if (text) {
                       rows.push_back(rowOf(name, *text, attributes.of(name)));
                       return;
                   }
                   for (Row& row : parseRows(earlier))
                       if (row.parameter == name) rows.push_back(std::move(row));
               });
    return rows;
}

void Watch::write(const std::string& text, const std::string& old) {
    if (text == old) return;
    if (!file_.writeBeside(text) || !file_.putInPlace())
        throw std::runtime_error("the notification file cannot be written");
}

void Watch::update() {
    const std::string old = file_.read();
    KnownRows known = byParameter(parseRows(old));
    const Attributes attributes = this->attributes();
    const DataModel::Parameters all = watched(attributes);
    DataModel::Parameters unknown;
    for (const std::string* name : all)
        if (known.count(*name) == 0) unknown.push_back(name);
    for (Row& row : rowsOf(unknown, attributes, {})) known[row.parameter] = row;
    Rows rows;
    for (const std::string* name : all) {
        const auto row = known.find(*name);
        if (row == known.end()) continue;
        row->second.notification = std::to_string(attributes.of(*name));
        rows.push_back(row->second);
    }
    write(formatRows(rows), old);
    model_.updateNotifTable();
}

// Without a change the two texts are the same, and the old one need not be taken apart.
void Watch::check(const std::function<void(const Rows&)>& report) {
    const std::string old = file_.read();
    const Attributes attributes = this->attributes();
    const Rows today = rowsOf(watched(attributes), attributes, old);
    const std::string text = formatRows(today);
    if (text != old) {
        if (!file_.writeBeside(text)) throw std::runtime_error("nothing is reported");
        report(changedSince(byParameter(parseRows(old)), today));
        file_.putInPlace();
    }
    model_.updateNotifTable();
}

Rows Watch::look() {
    const std::string old = file_.read();
    const Attributes attributes = this->attributes();
    return changedSince(byParameter(parseRows(old)), rowsOf(watched(attributes), attributes, old));
}

void Watch::acknowledge(const std::vector<std::pair<std::string, std::string>>& values) {
    const std::string old = file_.read();
    Rows rows = parseRows(old);
    for (Row& row : rows)
        for (const auto& [parameter, text] : values)
            if (row.parameter == parameter) row.value = toAcs(parameter, text).value;
    write(formatRows(rows), old);
}

}  // namespace cwmp
