#include "providers/NetworkDataProvider.h"

#include <cstddef>
#include <ostream>

namespace TR {

namespace {

using Interface = NetworkDataProvider::Interface;
using Stats = Interface::Stats;

// By the position in the enumerations.
constexpr const char* kStatuses[] = {"Up",         "Down",           "Dormant",
                                     "NotPresent", "LowerLayerDown", "Error"};
constexpr const char* kDuplexModes[] = {"Auto", "Full", "Half"};

}  // namespace

Interface::Interface(const std::string& interfaceName)
    : name(interfaceName), alias("cpe-" + interfaceName), lastChange(NSTime::nowRelative()) {}

// "Broadcast PacketsSent:" lacks a blank on purpose.
const Stats::Figure Stats::kFigures[] = {
    {"BytesSent", "Bytes Sent:", &Stats::BytesSent},
    {"BytesReceived", "Bytes Received:", &Stats::BytesReceived},
    {"PacketsSent", nullptr, &Stats::PacketsSent},
    {"PacketsReceived", nullptr, &Stats::PacketsReceived},
    {"ErrorsSent", "Errors Sent:", &Stats::ErrorsSent},
    {"ErrorsReceived", "Errors Received:", &Stats::ErrorsReceived},
    {"DiscardPacketsSent", "Discard Packets Sent:", &Stats::DiscardPacketsSent},
    {"DiscardPacketsReceived", "Discard Packets Received:", &Stats::DiscardPacketsReceived},
    {"UnicastPacketsSent", "Unicast Packets Sent:", &Stats::UnicastPacketsSent},
    {"UnicastPacketsReceived", "Unicast Packets Received:", &Stats::UnicastPacketsReceived},
    {"MulticastPacketsSent", "Multicast Packets Sent:", &Stats::MulticastPacketsSent},
    {"MulticastPacketsReceived", "Multicast Packets Received:", &Stats::MulticastPacketsReceived},
    {"BroadcastPacketsSent", "Broadcast PacketsSent:", &Stats::BroadcastPacketsSent},
    {"BroadcastPacketsReceived", "Broadcast Packets Received:", &Stats::BroadcastPacketsReceived},
    {"UnknownProtoPacketsReceived",
     "Unknown Proto Packets Received:", &Stats::UnknownProtoPacketsReceived},
};

const char* Interface::statusToString(Status status) {
    return kStatuses[static_cast<std::size_t>(status)];
}

const char* Interface::duplexModeToString(DuplexMode mode) {
    return kDuplexModes[static_cast<std::size_t>(mode)];
}

void Interface::changeStatus(Status newStatus) {
    status = newStatus;
    lastChange = NSTime::nowRelative();
}

std::ostream& operator<<(std::ostream& stream, const Stats& stats) {
    stream << "======Stats======\n";
    for (const Stats::Figure& figure : Stats::kFigures)
        if (figure.label != nullptr) stream << figure.label << ' ' << stats.*figure.value << '\n';
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
