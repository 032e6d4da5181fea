#pragma once

#include <string>

namespace trctl {

/// What became of a `set`, judged by what the parameter reads as afterwards, as the daemon's answer
/// is always empty.
struct SetOutcome {
    bool isTaken;
    std::string remark;  ///< what people should know; empty when it reads as it was given
};

/// Taken also counts what means the same: a number written in another way, and a text without the
/// white space at its end, which a setting kept by UCI loses.
SetOutcome judgeSet(const std::string& given, const std::string& before, const std::string& after);

}  // namespace trctl
