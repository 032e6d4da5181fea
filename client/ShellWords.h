#pragma once

#include <string>
#include <vector>

namespace client {

/// A command line split as a shell does it, without one: quotes and backslashes are removed, and
/// nothing is expanded. Pure.
struct ShellWords {
    std::vector<std::string> words;  ///< the last one is empty behind a blank
    bool isQuoted = false;           ///< the last word's quote is still open
};
ShellWords shellWords(const std::string& line);

}  // namespace client
