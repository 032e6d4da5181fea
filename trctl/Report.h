#pragma once

#include "trctl/Commands.h"

#include <string>

namespace trctl {

/// The same as `report`, of the snapshot that the options name and without a bus.
int reportOfSnapshot(const Options& options);

/// Removes the page's file from the words of the command line and returns it: the first word that
/// ends in .html or .htm, or is -. Without one, returns a name with the time in it.
std::string takePage(Addresses& words);

}  // namespace trctl
