#include "stb/src/common/NSTime.h"
#include "tests/unit/stb/TimeZone.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <limits>
#include <utility>

namespace {

constexpr std::int64_t kSecond = 1000000;

NSTime atSeconds(std::int64_t seconds) {
    return {seconds * kSecond};
}

}  // namespace

TEST(NSTimeTest, DumpShowsLocalTimeWithMillisecondsAndEMPTYForZero) {
    EXPECT_EQ(NSTime().toInt64(), 0);
    const struct {
        const char* zone;
        NSTime time;
        const char* text;
    } rows[] = {
        {kUtc, NSTime(), "EMPTY"},
        {kUtc, atSeconds(1580472005) + 42999, "2020-01-31 12:00:05.042"},
        {kUtc, 1, "1970-01-01 00:00:00.000"},
        {kCentralEurope, atSeconds(1580472005), "2020-01-31 13:00:05.000"},
        {kCentralEurope, atSeconds(1593604805), "2020-07-01 14:00:05.000"},
        {kUtc, atSeconds(2147483648), "2038-01-19 03:14:08.000"},
        {kUtc, atSeconds(4102444800), "2100-01-01 00:00:00.000"},
    };
    for (const auto& [name, time, text] : rows) {
        const TimeZone zone(name);
        EXPECT_EQ(time.dump(), text);
    }
}

TEST(NSTimeTest, CalendarTextsNoticeAChangedTimeZone) {
    const TimeZone zone(kUtc);
    EXPECT_EQ(atSeconds(60).toString("%H:%M"), "00:01");
    setenv("TZ", kCentralEurope, 1);
    EXPECT_EQ(atSeconds(60).toString("%H:%M"), "01:01");
}

TEST(NSTimeTest, TheLastTimeStillHasAText) {
    const NSTime last = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(last.toTimeT(), std::numeric_limits<std::int64_t>::max() / kSecond);
    EXPECT_FALSE(last.dump().empty());  // 292,277 years fit a tm
}

// Its buffer has five bytes for each of the format: "%F" needs 11 of 10, "%F " 12 of 15.
TEST(NSTimeTest, ToStringFormatsByStrftimeAndGivesTheEmptyTextBeyondItsBuffer) {
    const TimeZone zone(kUtc);
    EXPECT_EQ(atSeconds(1580472005).toString("%Y-%m-%dT%H:%M:%SZ"), "2020-01-31T12:00:05Z");
    EXPECT_EQ(atSeconds(0).toString("at %Y"), "at 1970");
    EXPECT_EQ(NSTime(1).toString(""), "");
    EXPECT_EQ(NSTime(1).toString("%F"), "");
    EXPECT_EQ(NSTime(1).toString("%F "), "1970-01-01 ");
}

TEST(NSTimeTest, NowIsTheWallClock) {
    const time_t before = time(nullptr);
    const NSTime now = NSTime::now();
    const time_t after = time(nullptr);
    EXPECT_GE(now.toTimeT(), before - 1);  // time() may read a coarser clock
    EXPECT_LE(now.toTimeT(), after + 1);
}

TEST(NSTimeTest, NowRelativeIsTheMonotonicClock) {
    timespec clock{};
    clock_gettime(CLOCK_MONOTONIC, &clock);
    const NSTime first = NSTime::nowRelative();
    const NSTime second = NSTime::nowRelative();
    EXPECT_GE(first.toInt64(), clock.tv_sec * kSecond + clock.tv_nsec / 1000);
    EXPECT_GE(second, first);
}

TEST(NSTimeTest, ComparisonsAreSigned) {
    const NSTime less = -1;
    const NSTime more = 1;
    EXPECT_TRUE(less < more && less <= more && less != more);
    EXPECT_FALSE(less > more || less >= more || less == more);
    EXPECT_TRUE(less == NSTime(-1) && less <= NSTime(-1) && less >= NSTime(-1));
}

TEST(NSTimeTest, ATimevalIsTakenWhole) {
    timeval value{};
    value.tv_sec = 4102444800;
    value.tv_usec = 7;
    NSTime time;
    time = value;
    EXPECT_EQ(time.toInt64(), 4102444800 * kSecond + 7);
}

TEST(NSTimeTest, CopiesAreIndependent) {
    NSTime a = 1;
    NSTime b;
    b = a;
    b += 1;
    EXPECT_EQ(a.toInt64(), 1);
    EXPECT_EQ(b.toInt64(), 2);
}

TEST(NSTimeTest, ArithmeticCountsMicroseconds) {
    NSTime time = 10;
    time += 5;
    time -= 20;
    EXPECT_EQ(time.toInt64(), -5);
    EXPECT_EQ((time + 7).toInt64(), 2);
    EXPECT_EQ((time - 7LL).toInt64(), -12);
    EXPECT_EQ((time + NSTime(100)).toInt64(), 95);
    EXPECT_EQ((time - NSTime(100)).toInt64(), -105);
}

TEST(NSTimeTest, CalendarUnitsAreAddedIn64Bits) {
    NSTime time;
    time.addDays(36525);
    EXPECT_EQ(time.toInt64(), 36525LL * 86400 * kSecond);
    time.addDays(-36525);
    time.addHours(1000000);
    EXPECT_EQ(time.toInt64(), 3600000000LL * kSecond);
    time.addHours(-1000000);
    time.addMinutes(100000000);
    EXPECT_EQ(time.toInt64(), 6000000000LL * kSecond);
    time.addMinutes(-100000000);
    time.addSeconds(std::numeric_limits<int>::min());
    EXPECT_EQ(time.toInt64(), -2147483648LL * kSecond);
}

TEST(NSTimeTest, WholeSecondsAreTruncated) {
    EXPECT_EQ(NSTime(4999999).toTimeT(), 4);
    EXPECT_EQ(NSTime(5000000).toTimeT(), 5);
    EXPECT_EQ(NSTime(-4999999).toTimeT(), -4);
    EXPECT_EQ(atSeconds(4294967296).toTimeT(), 4294967296);
}

TEST(NSTimeTest, ANegativeTimeHasNegativeMicroseconds) {
    const timeval value = NSTime(-1500000).getTimeVal();
    EXPECT_EQ(value.tv_sec, -1);
    EXPECT_EQ(value.tv_usec, -500000);
}

TEST(NSTimeTest, IntervalsShowEveryPartThatIsNotZeroAndMicrosecondsOnlyAlone) {
    const std::pair<NSTime, const char*> rows[] = {
        {0, "0"},
        {1, "1us"},
        {500, "500us"},
        {1500, "1ms"},
        {1000000, "1second"},
        {1001000, "1second, 1ms"},
        {120000000, "2minutes"},
        {86460000000, "1day, 1minute"},
        {93784005000, "1day, 2hours, 3minutes, 4seconds, 5ms"},
        {262920000000, "3days, 1hour, 2minutes"},
        {atSeconds(4294967296) + 2000, "49710days, 6hours, 28minutes, 16seconds, 2ms"},
        {std::numeric_limits<std::int64_t>::max(), "106751991days, 4hours, 54seconds, 775ms"},
    };
    for (const auto& [interval, text] : rows) EXPECT_EQ(interval.printInterval(), text);
}
