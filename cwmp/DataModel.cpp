#include "cwmp/DataModel.h"

#include "cwmp/ManagementServer.h"
#include "cwmp/Text.h"
#include "cwmp/Types.h"

#include <algorithm>
#include <stdexcept>

namespace cwmp {

template <typename Call>
auto DataModel::withDaemon(Call call) {
    if (isLost_) throw client::Unreachable("the daemon has not answered before", "");
    try {
        return call(connect_());
    } catch (const client::Unreachable&) {
        isLost_ = true;
        throw;
    }
}

void DataModel::forget() {
    tree_.reset();
    options_.reset();
    isLost_ = false;
}

const NameTree& DataModel::treeFor(const std::string& name) {
    static const NameTree ownBranch(management::names());
    if (management::isManaged(name)) return ownBranch;
    if (tree_) return *tree_;
    auto names = withDaemon([](client::Daemon& daemon) { return daemon.addresses(); });
    // Any program on the bus can make the daemon list any name; one of these would break the XML.
    const auto isBad = [](const std::string& other) { return !isXmlClean(other); };
    names.erase(std::remove_if(names.begin(), names.end(), isBad), names.end());
    for (std::string& managed : management::names()) names.push_back(std::move(managed));
    return tree_.emplace(std::move(names));
}

const UciOptions& DataModel::options() {
    if (!options_) options_ = uci_.show();
    if (!options_) throw std::runtime_error("uci does not answer");
    return *options_;
}

std::string DataModel::managed(Question question, const std::string& parameter) {
    const auto flag = [](bool isSet) { return isSet ? "1" : "0"; };
    if (question == Question::Writable) return flag(management::isWritable(parameter));
    if (question == Question::ForcedInform) return flag(management::isForcedInform(parameter));
    return management::value(options(), parameter);
}

void DataModel::askDaemon(Question question, const Parameters& parameters, const Answer& answer) {
    if (parameters.empty()) return;
    withDaemon([&](client::Daemon& daemon) { daemon.ask(question, parameters, answer); });
}

// The client's own branch stands together.
void DataModel::ask(Question question, const Parameters& parameters, const Answer& answer) {
    const auto isOwn = [](const std::string* name) { return management::isManaged(*name); };
    const auto own = std::find_if(parameters.begin(), parameters.end(), isOwn);
    const auto behind = std::find_if_not(own, parameters.end(), isOwn);
    askDaemon(question, {parameters.begin(), own}, answer);
    for (auto name = own; name != behind; ++name) answer(**name, managed(question, **name));
    askDaemon(question, {behind, parameters.end()}, answer);
}

std::optional<std::string> DataModel::value(const std::string& parameter) {
    std::optional<std::string> value;
    ask(Question::Value, {&parameter},
        [&](const std::string&, std::optional<std::string> text) { value = std::move(text); });
    return value;
}

bool DataModel::isWritable(const std::string& parameter) {
    bool isSet = false;
    ask(Question::Writable, {&parameter},
        [&](const std::string&, const std::optional<std::string>& text) { isSet = text == "1"; });
    return isSet;
}

bool DataModel::write(const std::string& parameter, const std::string& text) {
    if (management::isManaged(parameter)) {
        forgetOptions();
        return uci_.change("set", management::optionOf(parameter), text);
    }
    const std::string sent = isBehindShell(parameter) ? escapeForDoubleQuotes(text) : text;
    withDaemon([&](client::Daemon& daemon) { daemon.set(parameter, sent); });
    return true;
}

void DataModel::updateNotifTable() {
    withDaemon([](client::Daemon& daemon) { daemon.updateNotifTable(); });
}

}  // namespace cwmp
