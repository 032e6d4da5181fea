#pragma once

#include "providers/BaseDataProvider.h"
#include "providers/NetworkLinks.h"
#include "stb/src/common/NSTime.h"

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>

namespace TR {

/// `Device.IP.Interface.` and `Device.Ethernet.Interface.`: the box's wired and wireless interfaces
/// with their statistics, and of the wireless ones the WiFi settings and the link. An interface
/// once seen keeps its place and alias when it vanishes, so that the others keep their numbers. The
/// worker thread alone calls; `load()` runs commands and takes no lock, `store()` holds the store
/// mutex throughout. The ACS may write each `Alias` at any moment; the store keeps it.
class NetworkDataProvider : public BaseDataProvider {
  public:
    /// What is known of one interface after the latest refresh. The alias belongs to the ACS once
    /// it has written one.
    struct Interface {
        enum class Status { Up, Down, Dormant, NotPresent, LowerLayerDown, Error };
        enum class DuplexMode { Auto, Full, Half };

        /// Spelled as published, 64 bits wide on every box. Linux does not count broadcasts,
        /// multicasts sent and unknown protocols; those stay 0.
        struct Stats {
            std::uint64_t BytesSent = 0;
            std::uint64_t BytesReceived = 0;
            std::uint64_t PacketsSent = 0;
            std::uint64_t PacketsReceived = 0;
            std::uint64_t ErrorsSent = 0;
            std::uint64_t ErrorsReceived = 0;
            std::uint64_t DiscardPacketsSent = 0;
            std::uint64_t DiscardPacketsReceived = 0;
            std::uint64_t BroadcastPacketsReceived = 0;
            std::uint64_t BroadcastPacketsSent = 0;
            std::uint64_t MulticastPacketsReceived = 0;
            std::uint64_t MulticastPacketsSent = 0;
            std::uint64_t UnicastPacketsReceived = 0;
            std::uint64_t UnicastPacketsSent = 0;
            std::uint64_t UnknownProtoPacketsReceived = 0;

            struct Figure {
                const char* name;   ///< as published
                const char* label;  ///< for people; null where they get none
                std::uint64_t Stats::*value;
            };
            /// All of the above.
            static const Figure kFigures[15];
        };

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
        explicit Interface(const std::string& interfaceName);

        static const char* statusToString(Status status);
        static const char* duplexModeToString(DuplexMode mode);

        /// Sets the status, and the time of the last change to now whether it differs or not.
        void changeStatus(Status newStatus);

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
        Stats stats;
        WiFiConfig wiFiConfig;
        WiFiStatus wiFiStatus;
    };

    using BaseDataProvider::BaseDataProvider;

    bool updateValues() override { return load() && store(); }
    /// False, and everything stays as it was, when the kernel does not give its list.
    bool load() override;
    /// False without a store.
    bool store() override;

    /// By name, which is the order of their instance numbers.
    const std::map<std::string, Interface>& interfaces() const { return interfaces_; }

    /// Keeps the links whose whole name is that of a wired or wireless interface; VLANs, peers and
    /// the like are dropped.
    void filterInterfaces();

    static Interface::DuplexMode getDuplexMode(const std::string& name);
    /// Mbit/s.
    static std::uint64_t getInterfaceSpeed(const std::string& name);
    static Interface::WiFiConfig getWiFiConfig(const std::string& name);
    /// Runs a command with the name in it: only for names that have passed the filter.
    static Interface::WiFiStatus getWiFiStatus(const std::string& name);

  private:
    void updateInterface(const std::string& name, const NetworkLink& link,
                         const NetworkLinks& before);
    void updateVanished(Interface& interface);
    void updateWiFi(Interface& interface);
    void takeOverAliases() KELM_REQUIRES(storage()->getStorageMutex());
    void publish() const KELM_REQUIRES(storage()->getStorageMutex());

    NetworkLinks links_;  // of the latest load
    std::map<std::string, Interface> interfaces_;
};

/// A block for people, one line per figure; the packet totals are left out.
std::ostream& operator<<(std::ostream& stream, const NetworkDataProvider::Interface::Stats& stats);
/// A block for people. The last change shows the monotonic clock as if it were a date.
std::ostream& operator<<(std::ostream& stream, const NetworkDataProvider::Interface& interface);

}  // namespace TR
