#pragma once

#include "stb/src/common/NSTime.h"

#include <functional>

namespace TR {

/// Tells when the wall clock has been stepped back. A thread that sleeps until a time of the wall
/// clock (STBThread::sleepMs) then sleeps longer by the whole step, an hour for an hour, and has to
/// be woken. Compares the wall clock with the monotonic one; looked at by main about once a second.
class ClockStep {
  public:
    using Clock = std::function<NSTime()>;

    explicit ClockStep(Clock wall = NSTime::now, Clock monotonic = NSTime::nowRelative);

    /// True at the look that finds the wall clock set back and at the few after it: a sleep whose
    /// end was reckoned just before the step may begin just after the first waking. A forward step
    /// wakes sleepers by itself, and what a slewing clock loses between two looks is too little to
    /// matter.
    bool shouldWakeSleepers();

  private:
    NSTime difference() const;

    Clock wall_;
    Clock monotonic_;
    NSTime lastDifference_;
    int wakingsLeft_ = 0;
};

}  // namespace TR
