#include "providers/NetworkTree.h"
#include "tests/support/StoreTest.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace {

using TR::Address;
using TR::Value;
using Interface = TR::NetworkDataProvider::Interface;

const std::string kVendor = "Device.Services.STBService.1.X_Kelm.";

constexpr std::pair<const char*, std::uint64_t Interface::Stats::*> kCounters[] = {
    {"BytesSent", &Interface::Stats::BytesSent},
    {"BytesReceived", &Interface::Stats::BytesReceived},
    {"PacketsSent", &Interface::Stats::PacketsSent},
    {"PacketsReceived", &Interface::Stats::PacketsReceived},
    {"ErrorsSent", &Interface::Stats::ErrorsSent},
    {"ErrorsReceived", &Interface::Stats::ErrorsReceived},
    {"DiscardPacketsSent", &Interface::Stats::DiscardPacketsSent},
    {"DiscardPacketsReceived", &Interface::Stats::DiscardPacketsReceived},
    {"BroadcastPacketsReceived", &Interface::Stats::BroadcastPacketsReceived},
    {"BroadcastPacketsSent", &Interface::Stats::BroadcastPacketsSent},
    {"MulticastPacketsReceived", &Interface::Stats::MulticastPacketsReceived},
    {"MulticastPacketsSent", &Interface::Stats::MulticastPacketsSent},
    {"UnicastPacketsReceived", &Interface::Stats::UnicastPacketsReceived},
    {"UnicastPacketsSent", &Interface::Stats::UnicastPacketsSent},
    {"UnknownProtoPacketsReceived", &Interface::Stats::UnknownProtoPacketsReceived}};

Interface wiredInterface() {
    Interface interface("eth0");
    interface.hardwareAddress = "00:1a:2b:3c:4d:5e";
    interface.ipv4Address = "192.168.1.20";
    interface.subnetMask = "255.255.255.0";
    interface.enable = true;
    interface.status = Interface::Status::Up;
    interface.duplexMode = Interface::DuplexMode::Full;
    interface.maxBitRate = 3'000'000'000;
    return interface;
}

class NetworkTreeTest : public StoreTest {
  protected:
    using Texts = std::map<std::string, std::string>;

    void expectTexts(const std::string& branch, const Texts& texts) const {
        for (const auto& [name, text] : texts) EXPECT_EQ(at(branch + name), text) << branch << name;
    }
};

// Names and flags are in the golden listing of the whole tree.
TEST_F(NetworkTreeTest, AnInterfaceShowsItsAddressAndItsLink) {
    TR::NetworkTree::publishInterface(storage_, 1, wiredInterface());
    expectTexts("Device.IP.Interface.1.", {{"Enable", "1"},
                                           {"Name", "eth0"},
                                           {"IPv4AddressNumberOfEntries", "1"},
                                           {"IPv4Address.1.IPAddress", "192.168.1.20"},
                                           {"IPv4Address.1.SubnetMask", "255.255.255.0"},
                                           {"Status", "Up"},
                                           {"Alias", "cpe-eth0"}});
    expectTexts("Device.Ethernet.Interface.1.", {{"Enable", "1"},
                                                 {"Name", "eth0"},
                                                 {"Status", "Up"},
                                                 {"LowerLayers", ""},
                                                 {"Upstream", "1"},
                                                 {"MACAddress", "00:1a:2b:3c:4d:5e"},
                                                 {"MaxBitRate", "3000000000"},
                                                 {"DuplexMode", "Full"}});
}

TEST_F(NetworkTreeTest, NumbersAndTextsHaveTheirTypes) {
    TR::NetworkTree::publishRoots(storage_);
    TR::NetworkTree::publishInterface(storage_, 1, wiredInterface());
    TR::NetworkTree::publishWiFi(storage_, Interface("wlan0"));
    const std::set<std::string> texts = {"Name",  "IPAddress",   "SubnetMask",    "Status",
                                         "Alias", "LowerLayers", "MACAddress",    "DuplexMode",
                                         "SSID",  "BSSID",       "WPAPassphrase", "WEPPassphrase"};
    for (const std::string& path : below("")) {
        const std::string name = path.substr(path.rfind('.') + 1);
        const auto expected = name.empty()             ? Value::Type::Object
                              : texts.count(name) != 0 ? Value::Type::String
                                                       : Value::Type::Integer;
        EXPECT_EQ(value(path).getType(), expected) << path;
    }
}

TEST_F(NetworkTreeTest, EachCounterStandsUnderItsNameInBothInstances) {
    Interface interface = wiredInterface();
    std::uint64_t figure = 5'000'000'000;
    for (const auto& [name, counter] : kCounters) interface.stats.*counter = figure++;
    TR::NetworkTree::publishInterface(storage_, 1, interface);
    for (const auto& [name, counter] : kCounters)
        for (const std::string branch : {"Device.IP.", "Device.Ethernet."})
            EXPECT_EQ(at(branch + "Interface.1.Stats." + name),
                      std::to_string(interface.stats.*counter))
                << branch << name;
}

TEST_F(NetworkTreeTest, LastChangeIsTheWholeSecondsSinceThen) {
    Interface interface = wiredInterface();
    interface.lastChange = NSTime::nowRelative() - 3'600'900'000LL;
    TR::NetworkTree::publishInterface(storage_, 1, interface);
    const long long passed = (NSTime::nowRelative() - interface.lastChange).toTimeT();
    for (const char* path :
         {"Device.IP.Interface.1.LastChange", "Device.Ethernet.Interface.1.LastChange"}) {
        EXPECT_GE(std::stoll(at(path)), 3600);
        EXPECT_LE(std::stoll(at(path)), passed);
    }
}

TEST_F(NetworkTreeTest, AnInterfaceWithoutAnAddressHasNoEntries) {
    TR::NetworkTree::publishInterface(storage_, 1, Interface("eth0"));
    expectTexts("Device.IP.Interface.1.", {{"IPv4AddressNumberOfEntries", "0"},
                                           {"IPv4Address.1.IPAddress", ""},
                                           {"Status", "Error"}});
}

TEST_F(NetworkTreeTest, TheWiFiBranchShowsSettingsAndLink) {
    Interface interface("wlan0");
    interface.wiFiConfig = {"Home", "wpa", "wep"};
    interface.wiFiStatus.ssid = "Home: 2";
    interface.wiFiStatus.bssid = "9C:3D:CF:12:AB:EF";
    interface.wiFiStatus.frequency = 5180;
    interface.wiFiStatus.signal = -45;
    interface.wiFiStatus.bitRate = 780;
    TR::NetworkTree::publishWiFi(storage_, interface);
    expectTexts(kVendor, {{"Config.WiFiConfig.SSID", "Home"},
                          {"Config.WiFiConfig.WPAPassphrase", "wpa"},
                          {"Config.WiFiConfig.WEPPassphrase", "wep"},
                          {"WiFiStatus.SSID", "Home: 2"},
                          {"WiFiStatus.BSSID", "9C:3D:CF:12:AB:EF"},
                          {"WiFiStatus.BitRate", "780"},
                          {"WiFiStatus.Frequency", "5180"},
                          {"WiFiStatus.Signal", "-45"}});
}

TEST_F(NetworkTreeTest, AliasesAreReadBackByInterfaceName) {
    EXPECT_TRUE(TR::NetworkTree::aliases(storage_).empty());
    TR::NetworkTree::publishInterface(storage_, 1, Interface("eth0"));
    TR::NetworkTree::publishInterface(storage_, 2, Interface("wlan0"));
    ASSERT_TRUE(storage_[Address("Device.IP.Interface.2.Alias")].setByUser("from the ACS"));
    EXPECT_EQ(TR::NetworkTree::aliases(storage_),
              (Texts{{"eth0", "cpe-eth0"}, {"wlan0", "from the ACS"}}));
}

TEST_F(NetworkTreeTest, OfANameThatStandsTwiceTheFirstAliasCounts) {
    Interface interface("wlan0");
    interface.alias = "live";
    TR::NetworkTree::publishInterface(storage_, 1, interface);
    interface.alias = "stale";
    TR::NetworkTree::publishInterface(storage_, 2, interface);
    EXPECT_EQ(TR::NetworkTree::aliases(storage_), (Texts{{"wlan0", "live"}}));
}

TEST_F(NetworkTreeTest, ReadingAliasesBackMakesNoEntry) {
    TR::NetworkTree::publishInterface(storage_, 1, Interface("eth0"));
    storage_[Address("Device.IP.Interface.2.Name")];  // somebody asked for it in vain
    const auto before = below("");
    EXPECT_EQ(TR::NetworkTree::aliases(storage_).size(), 1U);
    EXPECT_EQ(below(""), before);
}

}  // namespace
