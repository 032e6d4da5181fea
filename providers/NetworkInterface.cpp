#include "providers/NetworkDataProvider.h"

#include <ostream>

namespace TR {

namespace {

using Interface = NetworkDataProvider::Interface;
using Stats = Interface::Stats;

struct Line {
    const char* label;
    std::uint64_t Stats::*figure;
};

// "Broadcast PacketsSent:" lacks a blank on purpose.
constexpr Line kLines[] = {
    {"Bytes Sent:", &Stats::BytesSent},
    {"Bytes Received:", &Stats::BytesReceived},
    {"Errors Sent:", &Stats::ErrorsSent},
    {"Errors Received:", &Stats::ErrorsReceived},
    {"Discard Packets Sent:", &Stats::DiscardPacketsSent},
    {"Discard Packets Received:", &Stats::DiscardPacketsReceived},
    {"Unicast Packets Sent:", &Stats::UnicastPacketsSent},
    {"Unicast Packets Received:", &Stats::UnicastPacketsReceived},
    {"Multicast Packets Sent:", &Stats::MulticastPacketsSent},
    {"Multicast Packets Received:", &Stats::MulticastPacketsReceived},
    {"Broadcast PacketsSent:", &Stats::BroadcastPacketsSent},
    {"Broadcast Packets Received:", &Stats::BroadcastPacketsReceived},
    {"Unknown Proto Packets Received:", &Stats::UnknownProtoPacketsReceived},
};

}  // namespace

NetworkDataProvider::Interface::Interface(const std::string& interfaceName)
    : name(interfaceName), alias("cpe-" + interfaceName), lastChange(NSTime::nowRelative()) {}

const char* NetworkDataProvider::Interface::statusToString(Status status) {
    switch (status) {
        case Status::Up:
            return "Up";
        case Status::Down:
            return "Down";
        case Status::Dormant:
            return "Dormant";
        case Status::NotPresent:
            return "NotPresent";
        case Status::LowerLayerDown:
            return "LowerLayerDown";
        case Status::Error:
            break;
    }
    return "Error";
}

const char* NetworkDataProvider::Interface::duplexModeToString(DuplexMode mode) {
    switch (mode) {
        case DuplexMode::Full:
            return "Full";
        case DuplexMode::Half:
            return "Half";
        case DuplexMode::Auto:
            break;
    }
    return "Auto";
}

void NetworkDataProvider::Interface::changeStatus(Status newStatus) {
    status = newStatus;
    lastChange = NSTime::nowRelative();
}

std::ostream& operator<<(std::ostream& stream, const Stats& stats) {
    stream << "======Stats======\n";
    for (const Line& line : kLines) stream << line.label << ' ' << stats.*line.figure << '\n';
    return stream << "======Stats end======\n";
}

std::ostream& operator<<(std::ostream& stream, const Interface& interface) {
    return stream << "======Interface======\n"
                  << "Name: " << interface.name << '\n'
                  << "Alias: " << interface.alias << '\n'
                  << "Hw Address: " << interface.hardwareAddress << '\n'
                  << "Address: " << interface.ipv4Address << '\n'
                  << "Mask: " << interface.subnetMask << '\n'
                  << "Enable: " << interface.enable << '\n'
                  << "Status: " << Interface::statusToString(interface.status) << '\n'
                  << "Last Change: " << interface.lastChange.toString("%Y-%m-%d %H:%M:%S") << '\n'
                  << "======Interface end======\n";
}

}  // namespace TR
