#include "stb/src/common/CalendarTime.h"
#include "tests/unit/stb/TimeZone.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>

using namespace TR::Utils;

namespace {

constexpr const char* kFormat = "%Y-%m-%d %H:%M:%S";
constexpr std::int64_t kMoment = 1580472005;  // 2020-01-31 12:00:05 UTC
constexpr std::int64_t kAfternoon = kMoment + 3600 + 23 * 60;

constexpr std::int64_t kSmallest = std::numeric_limits<int>::min();
constexpr std::int64_t kBiggest = std::numeric_limits<int>::max();

}  // namespace

TEST(UtilsTimeTest, ATextIsReadAsLocalTimeAndTheTimestampCutAt32Bits) {
    const struct {
        const char* zone;
        const char* text;
        std::int64_t seconds;
    } rows[] = {
        {kUtc, "2020-01-31 12:00:05", kMoment},
        {kCentralEurope, "2020-01-31 13:00:05", kMoment},
        {kCentralEurope, "2020-07-01 14:00:05", 1593604805},
        {kUtc, "2038-01-19 03:14:07", kBiggest},
        {kUtc, "2100-01-01 00:00:00", 4102444800},
        {kUtc, "1800-01-01 00:00:00", -5364662400},
    };
    for (const auto& [name, text, seconds] : rows) {
        const TimeZone zone(name);
        EXPECT_EQ(getTimevalFromString(text, kFormat).tv_sec, seconds) << text;
        EXPECT_EQ(getTimestampFromString(text, kFormat), std::clamp(seconds, kSmallest, kBiggest))
            << text;
    }
}

TEST(UtilsTimeTest, ATextThatDoesNotMatchGivesZero) {
    for (const char* text : {"", "yesterday", "2020-01-31", "2020-13-31 12:00:05"}) {
        EXPECT_EQ(getTimestampFromString(text, kFormat), 0) << text;
        EXPECT_EQ(getTimevalFromString(text, kFormat).tv_sec, 0) << text;
        EXPECT_EQ(getTimevalFromString(text, kFormat).tv_usec, 0) << text;
    }
}

// Units are numbered from the minute's 1; any other leaves the time unchanged.
TEST(UtilsTimeTest, TheBeginningCutsOffTheSmallerUnitsAndIsShiftedByTheTimeZone) {
    const struct {
        const char* zone;
        std::int64_t seconds;
        int unit;
        std::int64_t start;
    } rows[] = {
        {kUtc, kAfternoon, 0, kAfternoon},
        {kUtc, kAfternoon, 1, kAfternoon - 5},
        {kUtc, kAfternoon, 2, kMoment - 5 + 3600},
        {kUtc, kAfternoon, 3, kMoment - 5 - 12 * 3600},
        {kUtc, kAfternoon, 4, kAfternoon},
        {kCentralEurope, kAfternoon, 1, kAfternoon - 5 - 3600},
        {kUtc, 4102444800 + 59, 1, 4102444800},
    };
    for (const auto& [name, seconds, unit, start] : rows) {
        const TimeZone zone(name);
        const timeval beginning =
            getBeginningTimeval(NSTime(seconds * 1000000 + 999999), static_cast<TimeUnit>(unit));
        EXPECT_EQ(beginning.tv_sec, start) << unit;
        EXPECT_EQ(beginning.tv_usec, 0);
    }
}
