#pragma once

#include "client/Daemon.h"
#include "trctl/Shape.h"

#include <string>
#include <vector>

namespace trctl {

/// What may stand in the place of the word that is being typed.
struct Wanted {
    std::vector<std::string> words;  ///< commands, options, an option's values
    std::string start;               ///< what the candidates begin with: the word itself
    std::string bus;                 ///< of --bus
    bool addresses = false;
    bool writableOnly = false;
    bool assigns = false;  ///< a parameter's name is followed by an equal sign
    bool files = false;
};

/// \p words are a command line up to the cursor, without quotes; the last one is being typed.
/// Assignments ahead of the program count as the shell's.
Wanted wantedAt(const Shape& shape, const std::vector<std::string>& words);

/// The daemon's addresses that it wants, one level; with \p descends the first level that has more
/// than one. Those that the shell would show escaped are left out. Throws what the daemon throws.
std::vector<std::string> wantedAddresses(client::Daemon& daemon, const Wanted& wanted,
                                         bool descends);

/// Prints the candidates for the last word of a line, one a line. Returns kFilesToo where a name of
/// a file may stand too, else kDone, also without a daemon: it waits for a moment only.
int complete(const std::string& line);

constexpr int kFilesToo = 1;

}  // namespace trctl
