#include "trctl/ChangeWriter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace trctl;

/// Rounds at given times, in a zone five and a half hours ahead of UTC.
class ChangeWriterTest : public ::testing::Test {
  protected:
    ChangeWriterTest() {
        setenv("TZ", "XYZ-5:30", 1);  // one thread; NOLINT(concurrency-mt-unsafe)
        tzset();
    }
    ~ChangeWriterTest() override {
        unsetenv("TZ");  // NOLINT(concurrency-mt-unsafe)
        tzset();
    }

    /// That long after 2026-11-21 23:59:00, local time.
    static Round at(int seconds, std::map<std::string, std::string> values) {
        constexpr std::time_t kStart = 1795285740;
        return {std::move(values), kStart + seconds, 1000.0 + seconds};
    }
    /// What is printed between the rounds, until the writer has enough.
    std::string print(const std::vector<Round>& rounds) {
        const Terminal terminal(ColorMode::Never);
        Output out;
        ChangeWriter writer(options_, terminal, out);
        testing::internal::CaptureStdout();
        isEnough_ = false;
        for (std::size_t i = 1; i < rounds.size() && !isEnough_; ++i)
            isEnough_ = writer.print(rounds[i - 1], rounds[i]);
        return testing::internal::GetCapturedStdout();
    }

    Options options_;
    bool isEnough_ = false;
};

TEST_F(ChangeWriterTest, TheDateComesBeforeTheFirstChangeAndAtMidnight) {
    EXPECT_EQ(
        print({at(0, {{"A", "1"}}), at(1, {{"A", "1"}}), at(2, {{"A", "2"}}), at(3, {{"A", "3"}}),
               at(61, {{"A", "3"}}), at(62, {{"A", "4"}}), at(63, {{"A", "5"}})}),
        "2026-11-21\n"
        "23:59:02 A: 1 -> 2\n"
        "23:59:03 A: 2 -> 3\n"
        "2026-11-22\n"
        "00:00:02 A: 3 -> 4\n"
        "00:00:03 A: 4 -> 5\n");
    EXPECT_EQ(print({at(0, {{"A", "1"}}), at(1, {{"A", "2"}}), at(61, {{"A", "2"}})}),
              "2026-11-21\n23:59:01 A: 1 -> 2\n2026-11-22\n")
        << "midnight is shown when it comes";
}

TEST_F(ChangeWriterTest, MidnightWithoutAnyChangeBeforeItPrintsNothing) {
    EXPECT_EQ(print({at(0, {{"A", "1"}}), at(90, {{"A", "1"}})}), "");
}

TEST_F(ChangeWriterTest, AParameterThatComesOrGoesIsAChange) {
    EXPECT_EQ(print({at(0, {{"A", "1"}}), at(1, {{"B", "\x1b"}})}),
              "2026-11-21\n23:59:01 B: (none) -> \\x1b\n23:59:01 A: 1 -> (gone)\n");
}

TEST_F(ChangeWriterTest, JsonHasTheWholeTimeAndTheWholeValue) {
    options_.json = true;
    const std::string longText(300, 'x');
    EXPECT_EQ(
        print({at(0, {{"A", "1"}, {"B", "\""}}), at(60, {{"A", longText}}),
               at(61, {{"A", longText}, {"B", ""}})}),
        R"({ "time": "2026-11-22T00:00:00+05:30", "address": "A", "before": "1", "after": ")" +
            longText +
            "\" }\n"
            R"({ "time": "2026-11-22T00:00:00+05:30", "address": "B", "before": "\"", )"
            R"("after": null })"
            "\n"
            R"({ "time": "2026-11-22T00:00:01+05:30", "address": "B", "before": null, )"
            R"("after": "" })"
            "\n");
}

TEST_F(ChangeWriterTest, ItHasEnoughAfterTheWantedNumberOfChanges) {
    options_.count = 3;
    EXPECT_EQ(print({at(0, {{"A", "1"}, {"B", "1"}}), at(1, {{"A", "2"}, {"B", "2"}}),
                     at(2, {{"A", "3"}, {"B", "3"}}), at(3, {{"A", "4"}, {"B", "4"}})}),
              "2026-11-21\n23:59:01 A: 1 -> 2\n23:59:01 B: 1 -> 2\n23:59:02 A: 2 -> 3\n");
    EXPECT_TRUE(isEnough_);
}

TEST_F(ChangeWriterTest, OnceIsARoundWithAChange) {
    options_.once = true;
    EXPECT_EQ(print({at(0, {{"A", "1"}, {"B", "1"}}), at(1, {{"A", "1"}, {"B", "1"}}),
                     at(2, {{"A", "2"}, {"B", "2"}}), at(3, {{"A", "3"}, {"B", "3"}})}),
              "2026-11-21\n23:59:02 A: 1 -> 2\n23:59:02 B: 1 -> 2\n");
    EXPECT_TRUE(isEnough_);
}

TEST_F(ChangeWriterTest, RateIsShownForCountersOnly) {
    options_.rate = true;
    options_.intervalSeconds = 5;
    EXPECT_EQ(print({at(0, {{"I.Stats.Sent", "1000"}, {"I.UpTime", "10"}}),
                     at(5, {{"I.Stats.Sent", "6000"}, {"I.UpTime", "15"}})}),
              "2026-11-21\n23:59:05 I.Stats.Sent: 1000 -> 6000 (1000/s)\n"
              "23:59:05 I.UpTime: 10 -> 15\n");
    options_.json = true;
    EXPECT_EQ(print({at(0, {{"I.Stats.Sent", "1000"}}), at(5, {{"I.Stats.Sent", "1001"}}),
                     at(10, {{"I.Stats.Sent", "0"}})}),
              R"({ "time": "2026-11-21T23:59:05+05:30", "address": "I.Stats.Sent", )"
              R"("before": "1000", "after": "1001", "perSecond": 0.2 })"
              "\n"
              R"({ "time": "2026-11-21T23:59:10+05:30", "address": "I.Stats.Sent", )"
              R"("before": "1001", "after": "0", "perSecond": null })"
              "\n");
}

TEST(RatesTest, ACounterIsBeneathAnObjectWhoseNameEndsWithStats) {
    EXPECT_TRUE(Rates::isCounter("D.I.1.Stats.BytesSent"));
    EXPECT_TRUE(Rates::isCounter("D.Total.MPEG2TSStats.PacketDiscontinuityCounter"));
    for (const char* address : {"D.Stats", "Stats", "", ".", "D.Stats.1.Sent", "D.StatsX.Sent"})
        EXPECT_FALSE(Rates::isCounter(address)) << address;
}

constexpr char kSent[] = "I.Stats.Sent";

TEST(RatesTest, SlowReadsDivideByTheTimeBetweenThem) {
    Rates rates(5);
    EXPECT_EQ(rates.of(kSent, "0", "50", 0, 5), 10);
    EXPECT_EQ(rates.of(kSent, "50", "100", 20, 25), 10);
}

TEST(RatesTest, QuickReadsDivideByTheTimeSinceTheChangeBefore) {
    Rates rates(1);
    EXPECT_EQ(rates.of(kSent, "0", "50", 2, 3), std::nullopt);
    EXPECT_EQ(rates.of("I.Stats.Other", "0", "50", 4, 5), std::nullopt);
    EXPECT_EQ(rates.of(kSent, "50", "100", 7, 8), 10);
}

TEST(RatesTest, ACounterThatRestartsHasNoRateThen) {
    Rates rates(1);
    rates.of(kSent, "0", "50", 2, 3);
    EXPECT_EQ(rates.of(kSent, "50", "20", 7, 8), std::nullopt);
    EXPECT_EQ(rates.of(kSent, "20", "30", 12, 13), 2);
}

TEST(RatesTest, OnlyUnsignedWholeNumbersCount) {
    for (const char* text : {"", "-1", "+1", "1.5", "x", "1 ", "99999999999999999999"}) {
        Rates rates(5);
        EXPECT_EQ(rates.of(kSent, "0", text, 0, 5), std::nullopt) << text;
        EXPECT_EQ(rates.of(kSent, text, "5", 0, 5), std::nullopt) << text;
    }
    Rates rates(5);
    EXPECT_EQ(rates.of(kSent, "18446744073709551605", "18446744073709551615", 0, 5), 2);
    EXPECT_EQ(rates.of(kSent, "0", "50", 5, 5), std::nullopt) << "no time has passed";
}

TEST(RatesTest, ARateHasThreeDigitsOrIsWhole) {
    Rates rates(5);
    EXPECT_EQ(rates.of(kSent, "0", "10", 0, 30), 0.333);
    EXPECT_EQ(rates.of(kSent, "0", "10000001", 0, 8), 1250000);
}

}  // namespace
