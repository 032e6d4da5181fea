#pragma once

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace cwmp {

/// The texts of one JSON object of a line; nothing when the line is anything else. Pure.
using Texts = std::map<std::string, std::string>;
std::optional<Texts> parseLine(const std::string& line);

/// One JSON object of texts on one line, in this order, without a line feed. Pure.
std::string jsonLine(std::initializer_list<std::pair<const char*, std::string_view>> members);

}  // namespace cwmp
