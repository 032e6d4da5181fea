#include "servicemonitoring/STBServiceMonitoringModel.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>

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

TEST(MainStreamTest, TheStatusFollowsTheEnableFlag) {
    MainStream stream;
    stream.setEnable(true);
    EXPECT_EQ(stream.status(), MainStream::kStatusEnabled);
    stream.setEnable(false);
    EXPECT_EQ(stream.status(), MainStream::kStatusDisabled);
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

TEST(DiscontinuityCountTest, TheFirstReadingCountsWhole) {
    MainStream stream;
    stream.countDiscontinuities(7);
    EXPECT_EQ(discontinuities(stream), 7u);
}

TEST(DiscontinuityCountTest, OnlyGrowthIsAdded) {
    MainStream stream;
    for (const int reading : {5, 5, 8}) stream.countDiscontinuities(reading);
    EXPECT_EQ(discontinuities(stream), 8u);
}

TEST(DiscontinuityCountTest, ACounterThatGoesDownAddsNothingAndCountsOnFromThere) {
    MainStream stream;
    for (const int reading : {100, 4}) stream.countDiscontinuities(reading);
    EXPECT_EQ(discontinuities(stream), 100u);
    stream.countDiscontinuities(6);
    EXPECT_EQ(discontinuities(stream), 102u);
}

TEST(DiscontinuityCountTest, ACounterThatWrapsNearTwoToThe31stGoesOnBelowZero) {
    MainStream stream;
    for (const int reading : {kBiggest - 1, kBiggest}) stream.countDiscontinuities(reading);
    EXPECT_EQ(discontinuities(stream), 2147483647u);
    for (const int reading : {kSmallest, kSmallest + 3}) stream.countDiscontinuities(reading);
    EXPECT_EQ(discontinuities(stream), 2147483650u);
}

TEST(DiscontinuityCountTest, TheWidestJumpIsAddedWhole) {
    MainStream stream;
    for (const int reading : {kSmallest, kBiggest}) stream.countDiscontinuities(reading);
    EXPECT_EQ(discontinuities(stream), std::numeric_limits<std::uint32_t>::max());
}

TEST(DiscontinuityCountTest, TheTotalWrapsAt32Bits) {
    MainStream stream;
    for (const int reading : {kSmallest, kBiggest, 0, 5}) stream.countDiscontinuities(reading);
    EXPECT_EQ(discontinuities(stream), 4u);
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
