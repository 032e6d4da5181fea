#pragma once

#include <map>
#include <optional>
#include <string>

namespace trctl {

/// How fast counters grow, per second. A counter is an unsigned whole number right beneath an
/// object whose name ends with "Stats". The daemon refreshes its counters every five seconds. So
/// reads that are as far apart divide by the time between them; quicker ones divide by the time
/// since the read that saw the counter's previous change. Times are seconds of a clock that never
/// steps.
class Rates {
  public:
    static constexpr double kRefreshSeconds = 5;

    /// \p interval is the time between two reads.
    explicit Rates(double interval) : isSlow_(interval >= kRefreshSeconds) {}

    static bool isCounter(const std::string& address);

    /// Takes a change that happened between two reads. Nothing when it has no rate: the counter
    /// has restarted, or how long it took is not known.
    std::optional<double> of(const std::string& address, const std::string& before,
                             const std::string& after, double secondsBefore, double secondsAfter);

  private:
    bool isSlow_;
    std::map<std::string, double> changed_;  ///< when each was last seen to change
};

}  // namespace trctl
