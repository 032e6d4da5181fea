#include "providers/NetworkCounters.h"

namespace TR {

void NetworkCounters::update(unsigned interfaceIndex, const Reading& reading) {
    if (interfaceIndex_ != interfaceIndex) {
        interfaceIndex_ = interfaceIndex;
        totals_.fill(0);
        last_.fill(0);
    }
    for (std::size_t i = 0; i < kCounterCount; ++i) {
        // Modulo 2^32, so that a wrap adds what was really counted.
        totals_[i] += static_cast<std::uint32_t>(reading[i] - last_[i]);
    }
    last_ = reading;
}

NetworkStats NetworkCounters::stats() const {
    NetworkStats stats;
    stats.bytesSent = totals_[BytesSent];
    stats.bytesReceived = totals_[BytesReceived];
    stats.packetsSent = totals_[PacketsSent];
    stats.packetsReceived = totals_[PacketsReceived];
    stats.errorsSent = totals_[ErrorsSent];
    stats.errorsReceived = totals_[ErrorsReceived];
    stats.discardPacketsSent = totals_[DroppedSent];
    stats.discardPacketsReceived = totals_[DroppedReceived];
    stats.multicastPacketsReceived = totals_[MulticastReceived];
    // Some drivers count multicasts that they then drop, and either counter may have wrapped before
    // the first reading.
    if (totals_[PacketsReceived] > totals_[MulticastReceived])
        stats.unicastPacketsReceived = totals_[PacketsReceived] - totals_[MulticastReceived];
    stats.unicastPacketsSent = totals_[PacketsSent];
    return stats;
}

}  // namespace TR
