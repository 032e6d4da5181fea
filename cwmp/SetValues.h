#pragma once

#include "cwmp/DataModel.h"
#include "cwmp/Faults.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace cwmp {

/// One parameter of an RPC that sets values. Without the argument the line lacked it.
struct Assignment {
    std::string parameter;
    std::optional<std::string> argument;
};

struct SetOutcome {
    std::vector<Fault> faults;      ///< nothing has changed when there are any
    bool hasChangedClient = false;  ///< the client has to read its own settings again
    std::vector<std::pair<std::string, std::string>> values;  ///< parameters and what they now hold
};

/// Checks all of them, writes them one after the other, reads each one back, stores the parameter
/// key, if there is one, and commits. When one does not take, what was written before is put back.
/// Failures are in the outcome, nothing is thrown.
SetOutcome setValues(DataModel& model, const std::vector<Assignment>& assignments,
                     const std::optional<std::string>& parameterKey);

}  // namespace cwmp
