#pragma once

#include <optional>
#include <string>
#include <vector>

namespace cwmp {

/// What a person types, as the lines that the client would send; nothing when it is not a call of
/// this program. Pure.
std::optional<std::vector<std::string>> linesFor(const std::vector<std::string>& words);

extern const char* const kUsage;

}  // namespace cwmp
