#pragma once

#include "trctl/Shape.h"
#include "trctl/Terminal.h"

#include <optional>
#include <string>
#include <vector>

namespace trctl {

/// How a program ends.
constexpr int kDone = 0;
constexpr int kRefused = 1;      ///< refused, not found, different
constexpr int kUsage = 2;        ///< a wrong call, or a file that cannot be used
constexpr int kUnreachable = 3;  ///< no bus, no daemon

struct Assignment {
    std::string path;
    std::string value;
};

/// What the command line asks for; each command looks at its own.
struct Options {
    std::string command;
    std::string helpOn;  ///< the command that `help` explains
    std::string bus;
    bool quiet = false;
    ColorMode color = ColorMode::Auto;
    std::vector<std::string> paths;  ///< `wait`: none, or PATH=VALUE
    std::string parameter;           ///< the one that is to be set
    std::string value;
    std::vector<std::string> more;        ///< the words of `set` behind these two
    std::vector<Assignment> assignments;  ///< what these words mean, in order
    bool valueFromInput = false;          ///< the value of the only one is standard input
    std::string file;
    bool dryRun = false;
    bool json = false;
    bool valueOnly = false;
    bool endWithNul = false;
    bool wide = false;
    unsigned depth = 0;  ///< levels that `tree` draws; 0 draws all
    bool parametersOnly = false;
    bool level = false;
    bool isLong = false;
    bool plot = false;
    bool ascii = false;
    double intervalSeconds = 1;
    std::vector<std::string> except;  ///< paths that `watch` leaves out
    bool noClocks = false;
    bool rate = false;
    bool once = false;
    unsigned count = 0;          ///< change lines; 0 for any number
    double timeoutSeconds = 30;  ///< for each call to the daemon; `wait`: in all
    std::string snapshot;        ///< the archive that `report` reads instead of the daemon
    double watchSeconds = 10;    ///< how long `report` watches
};

/// Nothing when the program is to end at once with \p status: help was printed, or the call is
/// wrong and the reason is on standard error.
std::optional<Options> parseOptions(int argc, const char* const* argv, int& status);

/// What parseOptions understands.
Shape commandLineShape();

}  // namespace trctl
