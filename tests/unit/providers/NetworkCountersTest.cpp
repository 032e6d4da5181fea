#include "providers/NetworkCounters.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using Stats = TR::NetworkDataProvider::Interface::Stats;
using TR::NetworkLink;

constexpr std::uint64_t kTurnOver = std::uint64_t{1} << 32;

/// One interface whose counters are read again and again.
class NetworkCountersTest : public ::testing::Test {
  protected:
    void read(const rtnl_link_stats& counters, unsigned index = 2) {
        NetworkLink now;
        now.index = index;
        now.counters = counters;
        TR::countTraffic(stats_, before_ ? &*before_ : nullptr, now);
        before_ = now;
    }
    void readBytesSent(std::uint32_t bytes, unsigned index = 2) {
        rtnl_link_stats counters{};
        counters.tx_bytes = bytes;
        read(counters, index);
    }
    void vanish() { before_.reset(); }

    Stats stats_;

  private:
    std::optional<NetworkLink> before_;
};

TEST_F(NetworkCountersTest, EveryKernelCounterHasItsOwnFigureAndWhatLinuxDoesNotCountIsZero) {
    rtnl_link_stats counters{};
    counters.rx_packets = 100;
    counters.tx_packets = 20;
    counters.rx_bytes = 3000;
    counters.tx_bytes = 4294967295U;
    counters.rx_errors = 5;
    counters.tx_errors = 6;
    counters.rx_dropped = 7;
    counters.tx_dropped = 8;
    counters.multicast = 9;
    read(counters);
    EXPECT_EQ(stats_.PacketsReceived, 100U);
    EXPECT_EQ(stats_.PacketsSent, 20U);
    EXPECT_EQ(stats_.BytesReceived, 3000U);
    EXPECT_EQ(stats_.BytesSent, 4294967295U);
    EXPECT_EQ(stats_.ErrorsReceived, 5U);
    EXPECT_EQ(stats_.ErrorsSent, 6U);
    EXPECT_EQ(stats_.DiscardPacketsReceived, 7U);
    EXPECT_EQ(stats_.DiscardPacketsSent, 8U);
    EXPECT_EQ(stats_.MulticastPacketsReceived, 9U);
    EXPECT_EQ(stats_.UnicastPacketsReceived, 91U);
    EXPECT_EQ(stats_.UnicastPacketsSent, 20U);
    EXPECT_EQ(stats_.BroadcastPacketsSent, 0U);
    EXPECT_EQ(stats_.BroadcastPacketsReceived, 0U);
    EXPECT_EQ(stats_.MulticastPacketsSent, 0U);
    EXPECT_EQ(stats_.UnknownProtoPacketsReceived, 0U);
}

TEST_F(NetworkCountersTest, MoreMulticastsThanPacketsLeaveNoUnicasts) {
    rtnl_link_stats counters{};
    counters.rx_packets = 3;
    counters.multicast = 4;
    read(counters);
    EXPECT_EQ(stats_.UnicastPacketsReceived, 0U);
}

TEST_F(NetworkCountersTest, WrapsAddUpAndAQuietInterfaceStaysWhereItIs) {
    for (int round = 0; round < 1000; ++round)
        for (const std::uint32_t bytes : {0x80000000U, 0U, 0U}) readBytesSent(bytes);
    EXPECT_EQ(stats_.BytesSent, 1000 * kTurnOver);
}

TEST_F(NetworkCountersTest, EachCounterWrapsByItself) {
    rtnl_link_stats counters{};
    counters.rx_bytes = 4294967295U;
    counters.rx_packets = 10;
    read(counters);
    counters.rx_bytes = 0;
    counters.rx_packets = 11;
    read(counters);
    EXPECT_EQ(stats_.BytesReceived, kTurnOver);
    EXPECT_EQ(stats_.PacketsReceived, 11U);
    EXPECT_EQ(stats_.UnicastPacketsReceived, 11U);
}

TEST_F(NetworkCountersTest, ARecreatedOrReturningInterfaceStartsFromTheKernelsFigure) {
    readBytesSent(0xf0000000U);
    readBytesSent(0);
    readBytesSent(42, 3);
    EXPECT_EQ(stats_.BytesSent, 42U);
    readBytesSent(43, 3);
    EXPECT_EQ(stats_.BytesSent, 43U);
    vanish();
    readBytesSent(5, 3);
    EXPECT_EQ(stats_.BytesSent, 5U);
}

}  // namespace
