#include "cwmp/SetValues.h"

#include "cwmp/Conversion.h"
#include "cwmp/Log.h"
#include "cwmp/ManagementServer.h"
#include "cwmp/Text.h"

#include <exception>

namespace cwmp {

namespace {

/// A parameter that has passed the check.
struct Write {
    std::string parameter;
    std::string text;  ///< as it is to be stored
    std::string old;   ///< what was stored before
};

FaultCode check(DataModel& model, const Assignment& assignment, Write& write) {
    const std::string& name = assignment.parameter;
    if (!model.treeFor(name).hasParameter(name)) return FaultCode::InvalidName;
    if (!assignment.argument) return FaultCode::InvalidArguments;
    if (!model.isWritable(name)) return FaultCode::NotWritable;
    const auto text = management::isManaged(name) ? management::stored(name, *assignment.argument)
                                                  : fromAcs(typeOf(name), *assignment.argument);
    if (!text) return FaultCode::InvalidValue;
    const auto old = model.value(name);
    if (!old) return FaultCode::InternalError;
    write = {name, *text, *old};
    return FaultCode::None;
}

bool hasTaken(const Write& write, const std::string& now) {
    return isTrigger(write.parameter) || isSameValue(typeOf(write.parameter), write.text, now);
}

// The daemon takes every text that it can store: one that is as it was could not be.
FaultCode faultOf(const Write& write, const std::string& now) {
    const bool isText = typeOf(write.parameter) == Xsd::String && !isBehindShell(write.parameter);
    return isText && now == write.old ? FaultCode::InternalError : FaultCode::InvalidValue;
}

FaultCode writeOne(DataModel& model, const Write& write) {
    try {
        if (!model.write(write.parameter, write.text)) return FaultCode::InternalError;
    } catch (const client::Refused&) {
        return FaultCode::InvalidValue;
    }
    model.forgetOptions();
    const auto now = model.value(write.parameter);
    if (!now) return FaultCode::InternalError;
    return hasTaken(write, *now) ? FaultCode::None : faultOf(write, *now);
}

// What waits for the daemon or for uci may fail.
template <typename Step>
FaultCode attempted(Step step) {
    try {
        return step();
    } catch (const std::exception& error) {
        warn(error.what());
        return FaultCode::InternalError;
    }
}

FaultCode commit(DataModel& model, const std::optional<std::string>& parameterKey) {
    Uci& uci = model.uci();
    const bool isStored =
        (!parameterKey || uci.change("set", management::kParameterKeyOption, *parameterKey)) &&
        uci.commit();
    model.forgetOptions();
    return isStored ? FaultCode::None : FaultCode::InternalError;
}

// Newest first, as one parameter may have been written twice. Options are reverted all at once.
void putBack(DataModel& model, std::vector<Write> writes, std::size_t count) {
    for (; count > 0; --count) {
        const Write& write = writes[count - 1];
        if (management::isManaged(write.parameter) || isBehindShell(write.parameter)) continue;
        attempted([&] {
            model.write(write.parameter, isTrigger(write.parameter) ? "0" : write.old);
            return FaultCode::None;
        });
    }
    model.uci().revert();
    model.forgetOptions();
}

std::vector<Write> checkAll(DataModel& model, const std::vector<Assignment>& assignments,
                            SetOutcome& outcome) {
    std::vector<Write> writes(assignments.size());
    for (std::size_t i = 0; i < assignments.size(); ++i) {
        const FaultCode code = attempted([&] { return check(model, assignments[i], writes[i]); });
        if (code != FaultCode::None) outcome.faults.push_back({assignments[i].parameter, code});
    }
    return writes;
}

void writeAll(DataModel& model, const std::vector<Write>& writes,
              const std::optional<std::string>& parameterKey, SetOutcome& outcome) {
    for (std::size_t i = 0; i < writes.size() && outcome.faults.empty(); ++i) {
        const FaultCode code = attempted([&] { return writeOne(model, writes[i]); });
        if (code == FaultCode::None) continue;
        outcome.faults.push_back({writes[i].parameter, code});
        putBack(model, writes, i + 1);
    }
    if (!outcome.faults.empty()) return;
    const FaultCode code = attempted([&] { return commit(model, parameterKey); });
    if (code == FaultCode::None) return;
    outcome.faults.push_back({"", code});
    putBack(model, writes, writes.size());
}

}  // namespace

SetOutcome setValues(DataModel& model, const std::vector<Assignment>& assignments,
                     const std::optional<std::string>& parameterKey) {
    SetOutcome outcome;
    if (!isXmlClean(parameterKey.value_or("")))
        outcome.faults.push_back({"", FaultCode::InvalidArguments});
    const auto writes = checkAll(model, assignments, outcome);
    if (!outcome.faults.empty()) return outcome;
    writeAll(model, writes, parameterKey, outcome);
    if (!outcome.faults.empty()) return outcome;
    for (const Write& write : writes) {
        outcome.hasChangedClient =
            outcome.hasChangedClient ||
            (management::isManaged(write.parameter) && write.text != write.old);
        outcome.values.emplace_back(write.parameter, isTrigger(write.parameter) ? "0" : write.text);
    }
    return outcome;
}

}  // namespace cwmp
