#pragma once

namespace CLI {
class App;
}

namespace trctl {

struct Options;

/// Gives the parser every command and option; it writes what it parses to \p options, which the
/// caller owns as long as the parser.
void define(CLI::App& app, Options& options);

}  // namespace trctl
