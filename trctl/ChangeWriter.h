#pragma once

#include "trctl/Options.h"
#include "trctl/Output.h"
#include "trctl/Rates.h"

#include <ctime>
#include <map>
#include <string>

namespace trctl {

/// What one read found, and when.
struct Round {
    std::map<std::string, std::string> values;
    std::time_t time = 0;  ///< of the wall clock
    double seconds = 0;    ///< of a clock that never steps
};

/// Prints what differs between rounds in the way that the options of `watch` ask for: a line each,
/// as text or JSON. Text has a line with the date before the first change and whenever the date has
/// changed since. Borrows the options, the terminal and the output.
class ChangeWriter {
  public:
    ChangeWriter(const Options& options, const Terminal& terminal, Output& out)
        : options_(options), terminal_(terminal), out_(out), rates_(options.intervalSeconds) {}

    /// True when as much has been printed as the options ask for.
    bool print(const Round& before, const Round& after);

  private:
    struct Change {
        const std::string& address;
        const std::string* before;  ///< null for a parameter that was not there
        const std::string* after;   ///< null for one that is gone
    };

    bool isEnough() const;
    void take(const Change& change, const Round& before, const Round& after);
    void printDate(std::time_t time);
    void printText(const Change& change, std::time_t time, const std::optional<double>& rate);
    void printJson(const Change& change, std::time_t time, const std::optional<double>& rate);

    const Options& options_;
    const Terminal& terminal_;
    Output& out_;
    Rates rates_;
    std::string date_;  ///< the one printed last
    unsigned lines_ = 0;
};

}  // namespace trctl
