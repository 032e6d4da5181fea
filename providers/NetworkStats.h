#pragma once

#include <cstdint>
#include <iosfwd>

namespace TR {

/// The statistics of one network interface as they are published, 64 bits wide on every box. A
/// plain value. Linux does not count broadcasts, multicasts sent or unknown protocols; those stay
/// 0.
struct NetworkStats {
    std::uint64_t bytesSent = 0;
    std::uint64_t bytesReceived = 0;
    std::uint64_t packetsSent = 0;
    std::uint64_t packetsReceived = 0;
    std::uint64_t errorsSent = 0;
    std::uint64_t errorsReceived = 0;
    std::uint64_t discardPacketsSent = 0;
    std::uint64_t discardPacketsReceived = 0;
    std::uint64_t broadcastPacketsReceived = 0;
    std::uint64_t broadcastPacketsSent = 0;
    std::uint64_t multicastPacketsReceived = 0;
    std::uint64_t multicastPacketsSent = 0;
    std::uint64_t unicastPacketsReceived = 0;
    std::uint64_t unicastPacketsSent = 0;
    std::uint64_t unknownProtoPacketsReceived = 0;
};

/// A block for people, one line per figure; the packet totals are left out.
std::ostream& operator<<(std::ostream& stream, const NetworkStats& stats);

}  // namespace TR
