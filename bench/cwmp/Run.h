#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <sys/types.h>

/// One run of a program that is fed lines and read until it is through.
namespace bench {

struct Run {
    double cpu = 0;                   ///< microseconds, of the program itself and of the daemon
    double wall = 0;                  ///< microseconds, from before its start on
    std::uint64_t peakKilobytes = 0;  ///< of the program
    std::string answer;               ///< what it printed
};

/// Starts the program, writes \p input, reads up to \p lastLine (to the end of the file when that
/// is empty) and lets it end. It has no children, and is measured before it ends.
Run measure(const std::vector<std::string>& command, const std::string& input,
            const std::string& lastLine, pid_t daemon);

}  // namespace bench
