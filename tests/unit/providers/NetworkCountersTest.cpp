#include "providers/NetworkCounters.h"

#include <gtest/gtest.h>

namespace {

using TR::NetworkCounters;
using TR::NetworkStats;

constexpr unsigned kIndex = 2;
constexpr std::uint64_t kTurnOver = std::uint64_t{1} << 32;

NetworkCounters::Reading bytesSent(std::uint32_t bytes) {
    NetworkCounters::Reading reading{};
    reading[NetworkCounters::BytesSent] = bytes;
    return reading;
}

NetworkStats statsOf(const NetworkCounters::Reading& reading) {
    NetworkCounters counters;
    counters.update(kIndex, reading);
    return counters.stats();
}

TEST(NetworkCountersTest, BeforeTheFirstReadingEverythingIsZero) {
    const NetworkStats stats = NetworkCounters().stats();
    EXPECT_EQ(stats.bytesSent, 0U);
    EXPECT_EQ(stats.unicastPacketsReceived, 0U);
}

TEST(NetworkCountersTest, TheFirstReadingIsTheKernelsFigure) {
    EXPECT_EQ(statsOf(bytesSent(4294967295U)).bytesSent, 4294967295U);
}

TEST(NetworkCountersTest, EveryKernelCounterHasItsOwnFigure) {
    NetworkCounters::Reading reading{};
    reading[NetworkCounters::PacketsReceived] = 100;
    reading[NetworkCounters::PacketsSent] = 20;
    reading[NetworkCounters::BytesReceived] = 3000;
    reading[NetworkCounters::BytesSent] = 4000;
    reading[NetworkCounters::ErrorsReceived] = 5;
    reading[NetworkCounters::ErrorsSent] = 6;
    reading[NetworkCounters::DroppedReceived] = 7;
    reading[NetworkCounters::DroppedSent] = 8;
    reading[NetworkCounters::MulticastReceived] = 9;
    const NetworkStats stats = statsOf(reading);
    EXPECT_EQ(stats.packetsReceived, 100U);
    EXPECT_EQ(stats.packetsSent, 20U);
    EXPECT_EQ(stats.bytesReceived, 3000U);
    EXPECT_EQ(stats.bytesSent, 4000U);
    EXPECT_EQ(stats.errorsReceived, 5U);
    EXPECT_EQ(stats.errorsSent, 6U);
    EXPECT_EQ(stats.discardPacketsReceived, 7U);
    EXPECT_EQ(stats.discardPacketsSent, 8U);
    EXPECT_EQ(stats.multicastPacketsReceived, 9U);
    EXPECT_EQ(stats.unicastPacketsReceived, 91U);
    EXPECT_EQ(stats.unicastPacketsSent, 20U);
}

TEST(NetworkCountersTest, WhatLinuxDoesNotCountIsZero) {
    NetworkCounters::Reading reading{};
    reading.fill(1000);
    const NetworkStats stats = statsOf(reading);
    EXPECT_EQ(stats.broadcastPacketsSent, 0U);
    EXPECT_EQ(stats.broadcastPacketsReceived, 0U);
    EXPECT_EQ(stats.multicastPacketsSent, 0U);
    EXPECT_EQ(stats.unknownProtoPacketsReceived, 0U);
}

TEST(NetworkCountersTest, MoreMulticastsThanPacketsAreNoUnicasts) {
    NetworkCounters::Reading reading{};
    reading[NetworkCounters::PacketsReceived] = 3;
    reading[NetworkCounters::MulticastReceived] = 4;
    EXPECT_EQ(statsOf(reading).unicastPacketsReceived, 0U);
}

TEST(NetworkCountersTest, AWrapShowsNoStepBack) {
    NetworkCounters counters;
    counters.update(kIndex, bytesSent(4294967000U));
    counters.update(kIndex, bytesSent(704));
    EXPECT_EQ(counters.stats().bytesSent, 4294968000U);
}

TEST(NetworkCountersTest, ManyWrapsAddUp) {
    NetworkCounters counters;
    for (int round = 0; round < 1000; ++round) {
        counters.update(kIndex, bytesSent(0x80000000U));
        counters.update(kIndex, bytesSent(0));
    }
    EXPECT_EQ(counters.stats().bytesSent, 1000 * kTurnOver);
}

TEST(NetworkCountersTest, EachCounterWrapsByItself) {
    NetworkCounters counters;
    NetworkCounters::Reading reading{};
    reading[NetworkCounters::BytesReceived] = 4294967295U;
    reading[NetworkCounters::PacketsReceived] = 10;
    counters.update(kIndex, reading);
    reading[NetworkCounters::BytesReceived] = 0;
    reading[NetworkCounters::PacketsReceived] = 11;
    counters.update(kIndex, reading);
    EXPECT_EQ(counters.stats().bytesReceived, kTurnOver);
    EXPECT_EQ(counters.stats().packetsReceived, 11U);
}

TEST(NetworkCountersTest, AQuietInterfaceStaysWhereItIs) {
    NetworkCounters counters;
    for (int round = 0; round < 3; ++round) counters.update(kIndex, bytesSent(5));
    EXPECT_EQ(counters.stats().bytesSent, 5U);
}

TEST(NetworkCountersTest, ARecreatedInterfaceStartsFromTheKernelsFigure) {
    NetworkCounters counters;
    counters.update(kIndex, bytesSent(0xf0000000U));
    counters.update(kIndex, bytesSent(0));
    counters.update(kIndex + 1, bytesSent(42));
    EXPECT_EQ(counters.stats().bytesSent, 42U);
    counters.update(kIndex + 1, bytesSent(43));
    EXPECT_EQ(counters.stats().bytesSent, 43U);
}

TEST(NetworkCountersTest, AVanishedInterfaceKeepsItsFigures) {
    NetworkCounters counters;
    counters.update(kIndex, bytesSent(5));
    counters.vanished();
    EXPECT_EQ(counters.stats().bytesSent, 5U);
}

TEST(NetworkCountersTest, AReturningInterfaceStartsFromTheKernelsFigureWhateverItsIndex) {
    NetworkCounters counters;
    counters.update(kIndex, bytesSent(500));
    counters.vanished();
    counters.update(kIndex, bytesSent(42));
    EXPECT_EQ(counters.stats().bytesSent, 42U);
}

}  // namespace
