#pragma once

#include "trctl/Commands.h"

#include <string>

namespace trctl {

/// The same as `report`, of the snapshot that the options name and without a bus.
int reportOfSnapshot(const Options& options);

/// Takes the file that the page goes to out of the words of the command line: the first that ends
/// in .html or .htm, or is -. Without one it is a name with the time in it.
std::string takePage(Addresses& words);

}  // namespace trctl
