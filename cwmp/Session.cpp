#include "cwmp/Session.h"

#include "cwmp/Conversion.h"
#include "cwmp/Log.h"
#include "cwmp/ManagementServer.h"
#include "cwmp/Text.h"

#include <algorithm>
#include <iterator>

namespace cwmp {

namespace {

constexpr char kPrompt[] = "easycwmp>";
// Of a name that does not exist; real ones have 256 characters at most.
constexpr std::size_t kLongestName = 1024;
// Each pause is a fifth of a second.
constexpr int kPausesPerLogLine = 300;

struct IdentityRow {
    const char* key;
    const char* parameter;
};

constexpr IdentityRow kIdentity[] = {
    {"manufacturer", "Device.DeviceInfo.Manufacturer"},
    {"oui", "Device.DeviceInfo.ManufacturerOUI"},
    {"product_class", "Device.DeviceInfo.ProductClass"},
    {"serial_number", "Device.DeviceInfo.SerialNumber"},
};

struct HookSetting {
    const char* name;
    const char* key;
};

constexpr HookSetting kHookSettings[] = {
    {"KELM_CWMP_URL", "url"},
    {"KELM_CWMP_FILE_TYPE", "file_type"},
    {"KELM_CWMP_FILE_SIZE", "file_size"},
    {"KELM_CWMP_USER", "user_name"},
    {"KELM_CWMP_PASSWORD", "password"},
};

std::string textOf(FaultCode code) {
    return std::to_string(static_cast<int>(code));
}

bool isBlank(const std::string& line) {
    return line.find_first_not_of(" \t\r") == std::string::npos;
}

DataModel::Parameters pointersTo(const std::vector<std::string>& names) {
    DataModel::Parameters pointers;
    for (const std::string& name : names)
        if (!NameTree::isObject(name)) pointers.push_back(&name);
    return pointers;
}

}  // namespace

/// One thing that the client may want.
struct Session::Command {
    const char* command;
    const char* group;  ///< the class; empty for any
    void (Session::*run)();
    bool isSilent;  ///< the client wants no answer, not even a fault
};

const Session::Command Session::kCommands[] = {
    {"inform", "device_id", &Session::informDeviceId, false},
    {"inform", "parameter", &Session::informParameter, false},
    {"get", "value", &Session::getValue, false},
    {"get", "name", &Session::getName, false},
    {"get", "notification", &Session::getNotification, false},
    {"set", "value", &Session::setValue, false},
    {"set", "notification", &Session::setNotification, false},
    {"apply", "value", &Session::applyValue, false},
    {"apply", "notification", &Session::applyNotification, false},
    {"apply", "object", &Session::nothing, true},
    {"apply", "service", &Session::nothing, true},
    {"apply", "download", &Session::applyDownload, false},
    {"add", "object", &Session::noSuchObject, false},
    {"delete", "object", &Session::noSuchObject, false},
    {"update_value_change", "", &Session::updateValueChange, true},
    {"check_value_change", "", &Session::checkValueChange, true},
    {"download", "", &Session::download, false},
    {"upload", "", &Session::upload, false},
    {"reboot", "", &Session::reboot, true},
    {"factory_reset", "", &Session::factoryReset, true},
    {"end", "", &Session::end, true},
    {"exit", "", &Session::exit, true},
};

const Session::Command* Session::find(const Texts& texts) {
    const auto valueOf = [&](const char* key) {
        const auto text = texts.find(key);
        return text == texts.end() ? std::string() : text->second;
    };
    const std::string command = valueOf("command"), group = valueOf("class");
    const auto row =
        std::find_if(std::begin(kCommands), std::end(kCommands), [&](const Command& other) {
            return command == other.command && (*other.group == '\0' || group == other.group);
        });
    return row == std::end(kCommands) ? nullptr : row;
}

void Session::prompt() {
    it_.answer(kPrompt);
    it_.flush();
}

bool Session::take(const std::string& line) {
    if (isBlank(line)) return true;
    const auto texts = parseLine(line);
    const Command* const command = texts ? find(*texts) : nullptr;
    if (command == nullptr) {
        warn("a line of the client is not understood");
        isGroupBroken_ = true;
        answerFault("", FaultCode::InvalidArguments);
        return true;
    }
    request_ = *texts;
    it_.beginCommand();
    try {
        (this->*command->run)();
    } catch (const std::exception& error) {
        warn(std::string(command->command) + ' ' + command->group + ": " + error.what());
        if (!command->isSilent) answerFault(text("parameter"), FaultCode::InternalError);
    }
    return !isOver_;
}

const std::string& Session::text(const char* key) const {
    static const std::string none;
    const auto value = request_.find(key);
    return value == request_.end() ? none : value->second;
}

bool Session::lacks(const char* key) const {
    return request_.count(key) == 0;
}

void Session::answerFault(const std::string& parameter, FaultCode code) {
    ++faultCount_;
    const std::string clean = xmlClean(parameter);
    if (clean.empty())
        it_.answer(jsonLine({{"fault_code", textOf(code)}}));
    else
        it_.answer(
            jsonLine({{"parameter", headOf(clean, kLongestName)}, {"fault_code", textOf(code)}}));
}

void Session::answerFaults(const std::vector<Fault>& faults) {
    for (const Fault& fault : faults) answerFault(fault.parameter, fault.code);
}

void Session::end() {
    it_.model.forget();
    values_.clear();
    notifications_.clear();
    isGroupBroken_ = false;
    prompt();
}

void Session::exit() {
    isOver_ = true;
}

void Session::nothing() {}

void Session::noSuchObject() {
    answerFault("", FaultCode::InvalidName);
}

// An identity that is not complete would be kept for the client's life.
bool Session::answerDeviceId() {
    std::vector<std::string> values;
    for (const IdentityRow& row : kIdentity) {
        values.push_back(xmlClean(it_.model.value(row.parameter).value_or("")));
        if (values.back().empty()) return false;
    }
    it_.answer(jsonLine({{kIdentity[0].key, values[0]},
                         {kIdentity[1].key, values[1]},
                         {kIdentity[2].key, values[2]},
                         {kIdentity[3].key, values[3]}}));
    return true;
}

// Without an answer the client would never send an Inform, so this waits without a limit.
void Session::informDeviceId() {
    for (int pauses = 0; !isOver_; ++pauses) {
        std::string reason = "the daemon does not know it yet";
        try {
            if (answerDeviceId()) return;
        } catch (const std::exception& error) {
            reason = error.what();
        }
        if (pauses % kPausesPerLogLine == 0) warn("no device id for the client: " + reason);
        isOver_ = it_.isForPeople || !it_.pause();
        it_.model.forget();
        it_.beginCommand();
    }
    ++faultCount_;
}

void Session::answerValue(const std::string& parameter, const std::optional<std::string>& text) {
    if (!text) warn("the daemon cannot send " + parameter);
    const Seen seen = toAcs(parameter, text.value_or(""));
    it_.answer(
        jsonLine({{"parameter", parameter}, {"value", seen.value}, {"type", xsdName(seen.type)}}));
}

void Session::answerValues(const DataModel::Parameters& parameters) {
    it_.model.ask(
        DataModel::Question::Value, parameters,
        [&](const std::string& name, const std::optional<std::string>& text) {
            answerValue(name, text);
        });
}

void Session::informParameter() {
    DataModel::Parameters forced;
    const auto collect = [&](const std::string& name, const std::optional<std::string>& flag) {
        if (flag == "1") forced.push_back(&name);
    };
    try {
        const auto all = it_.model.treeFor("").parametersWithin("");
        it_.model.ask(DataModel::Question::ForcedInform, all, collect);
        answerValues(forced);
        if (!it_.isForPeople) refreshWatch();
    } catch (const client::Unreachable& loss) {
        // The ACS should hear of the box all the same.
        warn(std::string("inform parameter: ") + loss.what());
        const auto own = it_.model.treeFor(management::kBranch).parametersWithin("");
        forced.clear();
        it_.model.ask(DataModel::Question::ForcedInform, own, collect);
        answerValues(forced);
    }
}

// The daemon has forgotten its table when it was started again, and an earlier update may have
// failed. What fails here is tried again with the next session.
void Session::refreshWatch() {
    try {
        it_.watch.update();
    } catch (const std::exception& error) {
        warn(std::string("what the ACS watches is not up to date: ") + error.what());
    }
}

const NameTree* Session::treeWith(const std::string& name) {
    const NameTree& tree = it_.model.treeFor(name);
    if (tree.has(name)) return &tree;
    answerFault(name, FaultCode::InvalidName);
    return nullptr;
}

void Session::getValue() {
    if (lacks("parameter")) return answerFault("", FaultCode::InvalidArguments);
    const std::string& name = text("parameter");
    if (const NameTree* const tree = treeWith(name)) answerValues(tree->parametersWithin(name));
}

void Session::answerNames(const std::vector<std::string>& names) {
    std::vector<std::string> flags;
    it_.model.ask(DataModel::Question::Writable, pointersTo(names),
                  [&](const std::string&, const std::optional<std::string>& flag) {
                      flags.push_back(flag == "1" ? "1" : "0");
                  });
    auto flag = flags.begin();
    for (const std::string& name : names)
        it_.answer(jsonLine(
            {{"parameter", name}, {"writable", NameTree::isObject(name) ? "0" : *flag++}}));
}

// The empty path may come as no path at all.
void Session::getName() {
    const std::string &name = text("parameter"), &level = text("argument");
    const bool isNext = level == "1" || level == "true";
    const bool isLevel = isNext || level == "0" || level == "false";
    const NameTree* const tree = treeWith(name);
    if (tree == nullptr) return;
    if (!isLevel || (isNext && !NameTree::isObject(name)))
        return answerFault(name, FaultCode::InvalidArguments);
    answerNames(isNext ? tree->childrenOf(name) : tree->within(name));
}

void Session::getNotification() {
    if (lacks("parameter")) return answerFault("", FaultCode::InvalidArguments);
    const std::string& name = text("parameter");
    const NameTree* const tree = treeWith(name);
    if (tree == nullptr) return;
    const Attributes attributes = it_.watch.attributes();
    for (const std::string* parameter : tree->parametersWithin(name))
        it_.answer(jsonLine({{"parameter", *parameter},
                             {"notification", std::to_string(attributes.of(*parameter))}}));
}

void Session::setValue() {
    isGroupBroken_ = isGroupBroken_ || lacks("parameter");
    values_.push_back(
        {text("parameter"), lacks("argument") ? std::nullopt : std::optional(text("argument"))});
}

void Session::setNotification() {
    isGroupBroken_ = isGroupBroken_ || lacks("parameter");
    notifications_.emplace_back(text("parameter"), text("argument"));
}

void Session::applyValue() {
    if (isGroupBroken_) return answerFault("", FaultCode::InvalidArguments);
    // A person leaves the ACS's key as it is.
    const SetOutcome outcome = setValues(
        it_.model, values_, it_.isForPeople ? std::nullopt : std::optional(text("argument")));
    values_.clear();
    if (!outcome.faults.empty()) return answerFaults(outcome.faults);
    try {
        it_.watch.acknowledge(outcome.values);
    } catch (const std::exception& error) {
        warn(std::string("the ACS will hear of what it has set: ") + error.what());
    }
    if (outcome.hasChangedClient)
        it_.answer(jsonLine({{"status", "1"}, {"config_load", "1"}}));
    else
        it_.answer(jsonLine({{"status", "1"}}));
}

FaultCode Session::checkNotification(const std::string& name, const std::string& argument) {
    if (name.empty() || !it_.model.treeFor(name).has(name)) return FaultCode::InvalidName;
    const bool isAttribute = argument == "0" || argument == "1" || argument == "2";
    return isAttribute ? FaultCode::None : FaultCode::InvalidArguments;
}

void Session::applyNotification() {
    std::vector<Fault> faults;
    std::vector<std::pair<std::string, int>> wanted;
    if (isGroupBroken_) faults.push_back({"", FaultCode::InvalidArguments});
    for (const auto& [name, argument] : notifications_) {
        const FaultCode code = checkNotification(name, argument);
        if (code != FaultCode::None)
            faults.push_back({name, code});
        else
            wanted.emplace_back(name, argument.front() - '0');
    }
    notifications_.clear();
    if (faults.empty() && !it_.watch.setAttributes(wanted))
        faults.push_back({"", FaultCode::InternalError});
    if (!faults.empty()) return answerFaults(faults);
    refreshWatch();
    it_.answer(jsonLine({{"status", "0"}}));
}

void Session::updateValueChange() {
    it_.watch.update();
}

void Session::checkValueChange() {
    const auto report = [this](const Rows& changes) {
        for (const Row& row : changes) it_.answer(formatRow(row));
        it_.flush();
    };
    if (it_.isForPeople)
        report(it_.watch.look());
    else
        it_.watch.check(report);
}

void Session::runTransfer(const char* hook) {
    Hooks::Settings settings{{"KELM_CWMP_TARGET", downloadTarget()}};
    for (const HookSetting& row : kHookSettings) settings.emplace_back(row.name, text(row.key));
    const bool hasNul = std::any_of(settings.begin(), settings.end(), [](const auto& setting) {
        return setting.second.find('\0') != std::string::npos;
    });
    const FaultCode code = hasNul ? FaultCode::InvalidArguments : it_.hooks.run(hook, settings);
    if (code != FaultCode::None) return answerFault("", code);
    it_.answer(jsonLine({{"status", "1"}}));
}

void Session::download() {
    if (lacks("url")) return answerFault("", FaultCode::InvalidArguments);
    runTransfer("download");
}

void Session::upload() {
    runTransfer("upload");
}

void Session::applyDownload() {
    request_["file_type"] = text("argument");
    runTransfer("apply");
}

void Session::reboot() {
    it_.hooks.run("reboot", {});
}

void Session::factoryReset() {
    it_.hooks.run("factory_reset", {});
}

}  // namespace cwmp
