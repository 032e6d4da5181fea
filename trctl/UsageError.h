#pragma once

#include "trctl/Shape.h"

#include <string>
#include <vector>

namespace trctl {

struct Options;

/// How the parser ended on a command line that it could not take.
struct UsageError {
    std::string kind;               ///< the parser's name for it: ArgumentMismatch, ...
    std::string text;               ///< the parser's own words
    std::string command;            ///< empty when none was given
    std::vector<std::string> rest;  ///< the words that nothing took
};

/// A sentence that names the word and the nearest right one. Not escaped.
std::string complaintOf(const UsageError& error, const Shape& shape);

/// "there is no command `gte`; did you mean `get`?"
std::string unknownCommand(const Shape& shape, const std::string& word);

/// Why options that parse make no sense together; empty when they do.
std::string faultOf(const Options& options);

}  // namespace trctl
