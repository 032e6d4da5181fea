#pragma once

#include <map>
#include <string>
#include <vector>

namespace cwmp {

/// The options of one package by section and name, such as "@acs[0].url"; an option has one value,
/// a list has several. A section itself stands under "@acs[0]", with its type.
using UciOptions = std::map<std::string, std::vector<std::string>>;

/// What `uci show PACKAGE` prints. Named sections stand under their type and number too. A line
/// that is not understood is left out. Pure.
UciOptions parseUciShow(const std::string& text);

/// The first value; empty without one.
std::string firstOf(const UciOptions& options, const std::string& name);

}  // namespace cwmp
