#include "providers/NetworkInterface.h"

#include <ostream>

namespace TR {

NetworkInterface::NetworkInterface(const std::string& interfaceName)
    : name(interfaceName), alias("cpe-" + interfaceName), lastChange(NSTime::nowRelative()) {}

const char* NetworkInterface::statusToString(Status status) {
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

const char* NetworkInterface::duplexModeToString(DuplexMode mode) {
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

void NetworkInterface::changeStatus(Status newStatus) {
    status = newStatus;
    lastChange = NSTime::nowRelative();
}

bool NetworkInterface::isWireless() const {
    return name.rfind("wlan", 0) == 0;
}

std::ostream& operator<<(std::ostream& stream, const NetworkInterface& interface) {
    return stream << "======Interface======\n"
                  << "Name: " << interface.name << '\n'
                  << "Alias: " << interface.alias << '\n'
                  << "Hw Address: " << interface.hardwareAddress << '\n'
                  << "Address: " << interface.ipv4Address << '\n'
                  << "Mask: " << interface.subnetMask << '\n'
                  << "Enable: " << interface.enable << '\n'
                  << "Status: " << NetworkInterface::statusToString(interface.status) << '\n'
                  << "Last Change: " << interface.lastChange.toString("%Y-%m-%d %H:%M:%S") << '\n'
                  << "======Interface end======\n";
}

}  // namespace TR
