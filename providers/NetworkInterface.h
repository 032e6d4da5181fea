#pragma once

#include "providers/NetworkCounters.h"
#include "providers/NetworkStats.h"
#include "stb/src/common/NSTime.h"

#include <cstdint>
#include <iosfwd>
#include <string>

namespace TR {

/// What is known of one network interface after the latest refresh. A plain record, used by the
/// worker thread alone. The alias belongs to the ACS once it has written one.
struct NetworkInterface {
    enum class Status { Up, Down, Dormant, NotPresent, LowerLayerDown, Error };
    enum class DuplexMode { Auto, Full, Half };
    using Stats = NetworkStats;

    /// The settings file's texts; empty where it has none.
    struct WiFiConfig {
        std::string ssid;
        std::string wpaPassphrase;
        std::string wepPassphrase;
    };

    /// The link to the access point; empty texts and 0 without one.
    struct WiFiStatus {
        std::string ssid;  ///< with the tool's escapes for bytes that cannot be printed
        std::string bssid;
        std::int64_t frequency = 0;  ///< MHz
        std::int64_t signal = 0;     ///< dBm
        std::int64_t bitRate = 0;    ///< Mbit/s towards the access point
    };

    /// A new interface counts as changed now.
    explicit NetworkInterface(const std::string& interfaceName);

    static const char* statusToString(Status status);
    static const char* duplexModeToString(DuplexMode mode);

    /// Sets the status, and the time of the last change to now whether it differs or not.
    void changeStatus(Status newStatus);

    bool isWireless() const;

    std::string name;
    std::string alias;
    std::string hardwareAddress;
    std::string ipv4Address;
    std::string subnetMask;
    bool enable = false;
    Status status = Status::Error;
    NSTime lastChange;  ///< monotonic
    DuplexMode duplexMode = DuplexMode::Auto;
    std::uint64_t maxBitRate = 0;  ///< Mbit/s; 0 when it is not known
    NetworkCounters counters;      ///< where `stats` come from
    Stats stats;
    WiFiConfig wiFiConfig;
    WiFiStatus wiFiStatus;
};

/// A block for people. The last change shows the monotonic clock as if it were a date.
std::ostream& operator<<(std::ostream& stream, const NetworkInterface& interface);

}  // namespace TR
