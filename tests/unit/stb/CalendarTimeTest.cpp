#include "stb/src/common/CalendarTime.h"
#include "tests/unit/stb/TimeZone.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

using namespace TR::Utils;

namespace {

constexpr const char* kFormat = "%Y-%m-%d %H:%M:%S";
constexpr std::int64_t kMoment = 1580472005;  // 2020-01-31 12:00:05 UTC
constexpr std::int64_t kAfternoon = kMoment + 3600 + 23 * 60;

std::int64_t beginning(std::int64_t seconds, int unit) {
    const timeval start =
        getBeginningTimeval(NSTime(seconds * 1000000 + 999999), static_cast<TimeUnit>(unit));
    EXPECT_EQ(start.tv_usec, 0);
    return start.tv_sec;
}

}  // namespace

TEST(UtilsTimeTest, ATextIsReadAsLocalTime) {
    {
        const TimeZone zone(kUtc);
        EXPECT_EQ(getTimestampFromString("2020-01-31 12:00:05", kFormat), kMoment);
    }
    const TimeZone zone(kCentralEurope);
    EXPECT_EQ(getTimestampFromString("2020-01-31 13:00:05", kFormat), kMoment);
}

TEST(UtilsTimeTest, SummerTimeIsDetected) {
    const TimeZone zone(kCentralEurope);
    EXPECT_EQ(getTimestampFromString("2020-07-01 14:00:05", kFormat), 1593604805);
}

TEST(UtilsTimeTest, ATextThatDoesNotMatchGivesZero) {
    for (const char* text : {"", "yesterday", "2020-01-31", "2020-13-31 12:00:05"}) {
        EXPECT_EQ(getTimestampFromString(text, kFormat), 0) << text;
        EXPECT_EQ(getTimevalFromString(text, kFormat).tv_sec, 0) << text;
        EXPECT_EQ(getTimevalFromString(text, kFormat).tv_usec, 0) << text;
    }
}

TEST(UtilsTimeTest, TimestampsBeyond32BitsSaturate) {
    const TimeZone zone(kUtc);
    EXPECT_EQ(getTimestampFromString("2038-01-19 03:14:07", kFormat), 2147483647);
    EXPECT_EQ(getTimestampFromString("2100-01-01 00:00:00", kFormat), 2147483647);
    EXPECT_EQ(getTimestampFromString("1800-01-01 00:00:00", kFormat),
              std::numeric_limits<int>::min());
}

TEST(UtilsTimeTest, TimevalsBeyond2038AreWhole) {
    const TimeZone zone(kUtc);
    EXPECT_EQ(getTimevalFromString("2100-01-01 00:00:00", kFormat).tv_sec, 4102444800);
}

TEST(UtilsTimeTest, TheBeginningCutsOffTheSmallerUnits) {
    const TimeZone zone(kUtc);
    EXPECT_EQ(beginning(kAfternoon, 1), kAfternoon - 5);
    EXPECT_EQ(beginning(kAfternoon, 2), kMoment - 5 + 3600);
    EXPECT_EQ(beginning(kAfternoon, 3), kMoment - 5 - 12 * 3600);
}

TEST(UtilsTimeTest, AnyOtherUnitLeavesTheTimeUnchanged) {
    const TimeZone zone(kUtc);
    EXPECT_EQ(beginning(kAfternoon, 0), kAfternoon);
    EXPECT_EQ(beginning(kAfternoon, 4), kAfternoon);
}

TEST(UtilsTimeTest, TheBeginningIsShiftedByTheTimeZone) {
    const TimeZone zone(kCentralEurope);
    EXPECT_EQ(beginning(kAfternoon, 1), kAfternoon - 5 - 3600);
}

TEST(UtilsTimeTest, BeginningsBeyond2038AreWhole) {
    const TimeZone zone(kUtc);
    EXPECT_EQ(beginning(4102444800 + 59, 1), 4102444800);
}
