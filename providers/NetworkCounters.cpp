#include "providers/NetworkCounters.h"

#include <cstdint>

namespace TR {

namespace {

using Stats = NetworkDataProvider::Interface::Stats;

struct Counter {
    std::uint32_t rtnl_link_stats::*kernel;
    std::uint64_t Stats::*published;
};

constexpr Counter kCounters[] = {
    {&rtnl_link_stats::rx_packets, &Stats::PacketsReceived},
    {&rtnl_link_stats::tx_packets, &Stats::PacketsSent},
    {&rtnl_link_stats::rx_bytes, &Stats::BytesReceived},
    {&rtnl_link_stats::tx_bytes, &Stats::BytesSent},
    {&rtnl_link_stats::rx_errors, &Stats::ErrorsReceived},
    {&rtnl_link_stats::tx_errors, &Stats::ErrorsSent},
    {&rtnl_link_stats::rx_dropped, &Stats::DiscardPacketsReceived},
    {&rtnl_link_stats::tx_dropped, &Stats::DiscardPacketsSent},
    {&rtnl_link_stats::multicast, &Stats::MulticastPacketsReceived},
};

}  // namespace

void countTraffic(Stats& stats, const NetworkLink* before, const NetworkLink& now) {
    const bool isNew = before == nullptr || before->index != now.index;
    if (isNew) stats = Stats();
    const rtnl_link_stats last = isNew ? rtnl_link_stats() : before->counters;
    for (const Counter& counter : kCounters) {
        // Modulo 2^32, so that a wrap adds what was really counted.
        const std::uint32_t growth = now.counters.*counter.kernel - last.*counter.kernel;
        stats.*counter.published += growth;
    }
    // Some drivers count multicasts that they then drop, and either counter may have wrapped before
    // the first reading.
    stats.UnicastPacketsReceived = stats.PacketsReceived > stats.MulticastPacketsReceived
                                       ? stats.PacketsReceived - stats.MulticastPacketsReceived
                                       : 0;
    stats.UnicastPacketsSent = stats.PacketsSent;
}

}  // namespace TR
