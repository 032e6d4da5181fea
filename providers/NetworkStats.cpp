#include "providers/NetworkStats.h"

#include <ostream>

namespace TR {

namespace {

struct Line {
    const char* label;
    std::uint64_t NetworkStats::*figure;
};

// "Broadcast PacketsSent:" lacks a blank, and the scripts that read these dumps know it so.
constexpr Line kLines[] = {
    {"Bytes Sent:", &NetworkStats::bytesSent},
    {"Bytes Received:", &NetworkStats::bytesReceived},
    {"Errors Sent:", &NetworkStats::errorsSent},
    {"Errors Received:", &NetworkStats::errorsReceived},
    {"Discard Packets Sent:", &NetworkStats::discardPacketsSent},
    {"Discard Packets Received:", &NetworkStats::discardPacketsReceived},
    {"Unicast Packets Sent:", &NetworkStats::unicastPacketsSent},
    {"Unicast Packets Received:", &NetworkStats::unicastPacketsReceived},
    {"Multicast Packets Sent:", &NetworkStats::multicastPacketsSent},
    {"Multicast Packets Received:", &NetworkStats::multicastPacketsReceived},
    {"Broadcast PacketsSent:", &NetworkStats::broadcastPacketsSent},
    {"Broadcast Packets Received:", &NetworkStats::broadcastPacketsReceived},
    {"Unknown Proto Packets Received:", &NetworkStats::unknownProtoPacketsReceived},
};

}  // namespace

std::ostream& operator<<(std::ostream& stream, const NetworkStats& stats) {
    stream << "======Stats======\n";
    for (const Line& line : kLines) stream << line.label << ' ' << stats.*line.figure << '\n';
    return stream << "======Stats end======\n";
}

}  // namespace TR
