#pragma once

#include "trctl/Terminal.h"

#include <optional>
#include <string>
#include <vector>

namespace trctl {

/// How a program ends.
constexpr int kDone = 0;
constexpr int kRefused = 1;      ///< refused, not found, different
constexpr int kUsage = 2;        ///< a wrong call, or a file that `diff` cannot use
constexpr int kUnreachable = 3;  ///< no bus, no daemon

/// What the command line asks for; each command looks at its own.
struct Options {
    std::string command;
    std::string bus;
    ColorMode color = ColorMode::Auto;
    std::vector<std::string> paths;  ///< `wait`: none, or PATH=VALUE
    std::string parameter;           ///< the one that is to be set
    std::string value;
    std::string file;
    bool json = false;
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
    unsigned count = 0;  ///< change lines; 0 for any number
    double timeoutSeconds = 30;
    std::string snapshot;      ///< the archive that `report` reads instead of the daemon
    double watchSeconds = 10;  ///< how long `report` watches
};

/// Nothing when the program is to end at once with \p status: help was printed, or the call is
/// wrong and the reason is on standard error.
std::optional<Options> parseOptions(int argc, const char* const* argv, int& status);

}  // namespace trctl
