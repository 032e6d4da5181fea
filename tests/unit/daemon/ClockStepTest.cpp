#include "daemon/ClockStep.h"

#include <gtest/gtest.h>

namespace {

constexpr long long kSecond = 1'000'000;

class ClockStepTest : public ::testing::Test {
  protected:
    void passSeconds(long long seconds) {
        wall_.addSeconds(static_cast<int>(seconds));
        monotonic_.addSeconds(static_cast<int>(seconds));
    }
    // Looks once a second.
    int wakings(int looks) {
        int count = 0;
        for (int i = 0; i < looks; ++i) {
            passSeconds(1);
            if (step_.shouldWakeSleepers()) ++count;
        }
        return count;
    }

    NSTime wall_{1'700'000'000 * kSecond};
    NSTime monotonic_{50 * kSecond};
    TR::ClockStep step_{[this] { return wall_; }, [this] { return monotonic_; }};
};

TEST_F(ClockStepTest, ASteadyClockWakesNobody) {
    EXPECT_EQ(wakings(10000), 0);
}

TEST_F(ClockStepTest, AnHourBackWakesTheSleepersAFewTimes) {
    wall_.addHours(-1);
    EXPECT_EQ(wakings(1), 1);
    EXPECT_EQ(wakings(10), 2);
    EXPECT_EQ(wakings(1000), 0);
}

TEST_F(ClockStepTest, EachStepBackCounts) {
    wall_.addHours(-1);
    EXPECT_EQ(wakings(10), 3);
    wall_.addDays(-366);
    EXPECT_EQ(wakings(10), 3);
}

TEST_F(ClockStepTest, AYearAheadWakesNobodyAndTheWayBackDoes) {
    wall_.addDays(365);
    EXPECT_EQ(wakings(10), 0);
    wall_.addDays(-365);
    EXPECT_EQ(wakings(10), 3);
}

TEST_F(ClockStepTest, AQuarterOfASecondBackCountsAndATenthDoesNot) {
    wall_ -= 250'000;
    EXPECT_EQ(wakings(10), 3);
    wall_ -= 100'000;
    EXPECT_EQ(wakings(10), 0);
}

TEST_F(ClockStepTest, ASlewingClockWakesNobody) {
    for (int i = 0; i < 1000; ++i) {
        wall_ -= 500;  // the kernel slews by at most half a millisecond in a second
        EXPECT_EQ(wakings(1), 0);
    }
}

TEST_F(ClockStepTest, TheEpochIsNoSpecialTime) {
    wall_ = NSTime(0);
    EXPECT_EQ(wakings(10), 3);
    wall_ = NSTime(-86'400 * kSecond);
    EXPECT_EQ(wakings(10), 3);
}

TEST_F(ClockStepTest, TheRealClocksWakeNobody) {
    TR::ClockStep real;
    EXPECT_FALSE(real.shouldWakeSleepers());
}

}  // namespace
