#include "daemon/ClockStep.h"

#include <utility>

namespace TR {

namespace {

constexpr int kWakings = 3;
// The two clocks are read one after the other, and a reader may be interrupted in between.
constexpr long long kSmallestStepMicroseconds = 200'000;

}  // namespace

ClockStep::ClockStep(Clock wall, Clock monotonic)
    : wall_(std::move(wall)), monotonic_(std::move(monotonic)), lastDifference_(difference()) {}

NSTime ClockStep::difference() const {
    return wall_() - monotonic_();
}

bool ClockStep::shouldWakeSleepers() {
    const NSTime now = difference();
    if (now < lastDifference_ - kSmallestStepMicroseconds) wakingsLeft_ = kWakings;
    lastDifference_ = now;
    if (wakingsLeft_ == 0) return false;
    --wakingsLeft_;
    return true;
}

}  // namespace TR
