#pragma once

#include "trctl/Commands.h"
#include "trctl/JsonOutput.h"

#include <map>
#include <optional>
#include <string>

namespace trctl {

/// The saved output of `get --json`.

using Saved = std::map<std::string, std::string>;

/// The whole file, - is standard input; nothing, and the reason in \p error, when it cannot be read
/// to its end or is larger than 256 MiB.
std::optional<std::string> contentOf(const std::string& path, std::string& error);

/// What the file that the options name holds; nothing, after a complaint, when it cannot be used.
std::optional<Saved> readSaved(const Context& context);

Addresses keysOf(const Saved& saved);

/// The file's line, then the daemon's; none for a side that does not have the parameter.
void printDifference(Context& context, const Difference& difference);

}  // namespace trctl
