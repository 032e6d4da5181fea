#pragma once

#include "trctl/Commands.h"

#include <functional>
#include <string>
#include <vector>

namespace trctl {

/// A write and what was read before and after it.
struct Written {
    Assignment assignment;
    std::string before;
    std::string after;
    bool isTaken;
    std::string complaint;  ///< empty when it reads as it was given
};

/// Writes listed, writable parameters and reads each back. Then it prints each, with its complaint
/// behind it; not earlier, because a reader of standard output that has gone ends the program.
/// Returns the exit status.
int writeAll(Context& context, const std::vector<Assignment>& assignments,
             const std::function<void(const Written&)>& print);

}  // namespace trctl
