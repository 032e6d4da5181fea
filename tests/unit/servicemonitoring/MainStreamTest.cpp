#include "servicemonitoring/STBServiceMonitoringModel.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <utility>
#include <vector>

namespace {

using MainStream = TR::STBServiceMonitoringModel::MainStream;

constexpr int kBiggest = std::numeric_limits<int>::max();
constexpr int kSmallest = std::numeric_limits<int>::min();

std::uint32_t discontinuities(const MainStream& stream) {
    return stream.total().packetDiscontinuityCounter;
}

TEST(MainStreamTest, ANewStreamIsDisabledAndHasNoFiguresAndNoSamples) {
    const NSTime before = NSTime::nowRelative();
    const MainStream stream;
    EXPECT_FALSE(stream.isEnabled());
    EXPECT_EQ(stream.status(), MainStream::kStatusDisabled);
    EXPECT_EQ(stream.serviceType(), "");
    EXPECT_EQ(stream.gmin(), 0u);
    EXPECT_EQ(stream.severeLossMinDistance(), 0u);
    EXPECT_EQ(stream.severeLossMinLength(), 0u);
    EXPECT_EQ(discontinuities(stream), 0u);
    EXPECT_TRUE(stream.samples().empty());
    EXPECT_GE(stream.resetTime(), before);
}

TEST(MainStreamTest, SamplesAreGrownAndCutAtTheEndAndAreZero) {
    MainStream stream;
    for (const std::uint32_t count : {3u, 10u, 1u, 0u}) {
        stream.resizeSamples(count);
        EXPECT_EQ(stream.samples().size(), count);
    }
    stream.restartSamples(4);
    ASSERT_EQ(stream.samples().size(), 4u);
    EXPECT_EQ(stream.samples().back().sampleSeconds, 0u);
    EXPECT_EQ(stream.samples().back().audioDecodingErrors, 0u);
}

// One that goes down adds nothing and counts on from there; one that wraps goes on below zero. The
// total wraps at 32 bits.
TEST(DiscontinuityCountTest, OnlyGrowthIsAdded) {
    const std::pair<std::vector<int>, std::uint32_t> rows[] = {
        {{7}, 7},
        {{5, 5, 8}, 8},
        {{100, 4}, 100},
        {{100, 4, 6}, 102},
        {{kBiggest - 1, kBiggest, kSmallest, kSmallest + 3}, 2147483650u},
        {{kSmallest, kBiggest}, std::numeric_limits<std::uint32_t>::max()},
        {{kSmallest, kBiggest, 0, 5}, 4},
    };
    for (const auto& [readings, total] : rows) {
        MainStream stream;
        for (const int reading : readings) stream.countDiscontinuities(reading);
        EXPECT_EQ(discontinuities(stream), total) << ::testing::PrintToString(readings);
    }
}

TEST(DiscontinuityCountTest, AResetZeroesTheTotalAndKeepsTheReading) {
    MainStream stream;
    stream.countDiscontinuities(50);
    const NSTime before = NSTime::nowRelative();
    stream.resetTotals();
    EXPECT_EQ(discontinuities(stream), 0u);
    EXPECT_GE(stream.resetTime(), before);
    stream.countDiscontinuities(53);
    EXPECT_EQ(discontinuities(stream), 3u);
}

// The same sum in wrapping arithmetic, over readings of every size and sign.
TEST(DiscontinuityCountTest, AnyReadingsCountWithoutOverflow) {
    std::mt19937 random(1);
    MainStream stream;
    std::uint32_t expected = 0;
    std::int64_t last = 0;
    for (int i = 0; i < 10000; ++i) {
        const int reading = static_cast<int>(random()) >> (random() % 32);
        if (reading > last) expected += static_cast<std::uint32_t>(reading - last);
        last = reading;
        stream.countDiscontinuities(reading);
    }
    EXPECT_EQ(discontinuities(stream), expected);
}

}  // namespace
