#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace client {

using Values = std::vector<std::pair<std::string, std::string>>;

/// One JSON object, an address and its text a line, in the given order.
std::string toJson(const Values& values);

/// One JSON object on one line, its members in the given order. A number has at most six digits;
/// null stands for what is not known.
using Member = std::variant<std::nullptr_t, bool, double, std::string>;
using Members = std::vector<std::pair<const char*, Member>>;
std::string toJsonLine(const Members& members);

/// What a saved `get --json` holds; nothing, and the reason in \p error, for any other text.
std::optional<std::map<std::string, std::string>> parseSaved(const std::string& json,
                                                             std::string& error);

/// Empty when the CWMP client can read this change line, else what is wrong with it.
std::string faultOfChangeLine(const std::string& line);

}  // namespace client
