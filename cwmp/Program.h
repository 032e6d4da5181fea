#pragma once

#include "cwmp/Deadline.h"

#include <string>
#include <utility>
#include <vector>

namespace cwmp {

/// How a program that was started ended.
struct Ended {
    enum class How { Exited, Signalled, TimedOut, NotStarted };
    How how = How::NotStarted;
    int status = 0;      ///< the exit status or the signal
    std::string output;  ///< what it printed on standard output

    bool isGood() const { return how == How::Exited && status == 0; }
};

/// Why it is not good, in words.
std::string reasonOf(const Ended& ended);

enum class Output { Read, ToStandardError };

/// Starts a program by its argument vector, without a shell, and waits for it: standard input is
/// /dev/null, standard output is read (1 MiB at most) or goes to standard error, nothing else is
/// inherited, and signals are at their defaults. At the deadline it is killed with all that it has
/// started. \p settings are added to the environment.
Ended runProgram(const std::vector<std::string>& arguments, const Deadline& deadline,
                 Output output = Output::Read,
                 const std::vector<std::pair<std::string, std::string>>& settings = {});

}  // namespace cwmp
