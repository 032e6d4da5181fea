#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace trctl {

struct Options;

/// What is wrong with the command line that \p app has parsed in vain: a sentence that names the
/// word and the nearest right one. Not escaped.
std::string complaintOf(const CLI::App& app, const CLI::ParseError& error);

/// "there is no command `gte`; did you mean `get`?"
std::string unknownCommand(const CLI::App& app, const std::string& word);

/// Why options that parse make no sense together; empty when they do.
std::string faultOf(const Options& options);

}  // namespace trctl
