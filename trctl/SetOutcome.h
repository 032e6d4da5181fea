#pragma once

#include <string>

namespace trctl {

/// The result of a `set`, judged by reading the parameter back, because the daemon's answer is
/// always empty.
struct SetOutcome {
    bool isTaken;
    std::string remark;  ///< what people should know; empty when it reads as it was given
};

/// A text with the same meaning counts as taken: a number written in another way, and a text
/// without the white space at its end, which a setting kept by UCI loses.
SetOutcome judgeSet(const std::string& given, const std::string& before, const std::string& after);

/// Why the daemon refuses a value, in people's words: for a text that does not convert to the
/// number that the parameter holds it has only "Logic error".
std::string reasonOfRefusal(const std::string& given, const std::string& refusal);

}  // namespace trctl
