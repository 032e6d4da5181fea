#include "model/Storage.h"
#include "providers/NetworkTree.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using TR::Address;
using TR::Value;
using Interface = TR::NetworkDataProvider::Interface;

const std::string kVendor = "Device.Services.STBService.1.X_Kelm.";

constexpr const char* kStatsNames[] = {"BytesSent",
                                       "BytesReceived",
                                       "PacketsSent",
                                       "PacketsReceived",
                                       "ErrorsSent",
                                       "ErrorsReceived",
                                       "DiscardPacketsSent",
                                       "DiscardPacketsReceived",
                                       "BroadcastPacketsReceived",
                                       "BroadcastPacketsSent",
                                       "MulticastPacketsReceived",
                                       "MulticastPacketsSent",
                                       "UnicastPacketsReceived",
                                       "UnicastPacketsSent",
                                       "UnknownProtoPacketsReceived"};

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

class NetworkTreeTest : public ::testing::Test {
  protected:
    std::string at(const std::string& path) {
        return storage_.getValueCopy(Address(path)).toString();
    }
    Value::Type typeAt(const std::string& path) {
        return storage_.getValueCopy(Address(path)).getType();
    }
    std::set<std::string> paths() {
        std::set<std::string> paths;
        for (const Address& address : storage_.listAddresses()) paths.insert(address.get());
        return paths;
    }

    TR::Storage storage_;
};

TEST_F(NetworkTreeTest, TheRootsAreFourObjects) {
    TR::NetworkTree::publishRoots(storage_);
    EXPECT_EQ(paths(), (std::set<std::string>{"Device.IP.", "Device.IP.Interface.",
                                              "Device.Ethernet.", "Device.Ethernet.Interface."}));
    for (const std::string& path : paths()) EXPECT_EQ(typeAt(path), Value::Type::Object) << path;
}

TEST_F(NetworkTreeTest, AnInterfaceIsExactlyTheseParameters) {
    TR::NetworkTree::publishInterface(storage_, 7, wiredInterface());
    std::set<std::string> expected;
    for (const std::string branch : {"Device.IP.Interface.7.", "Device.Ethernet.Interface.7."}) {
        for (const char* name : {"", "Enable", "Name", "Status", "LastChange", "Stats."})
            expected.insert(branch + name);
        for (const char* name : kStatsNames) expected.insert(branch + "Stats." + name);
    }
    for (const char* name : {"IPv4AddressNumberOfEntries", "IPv4Address.1.IPAddress",
                             "IPv4Address.1.SubnetMask", "Alias"})
        expected.insert(std::string("Device.IP.Interface.7.") + name);
    for (const char* name : {"LowerLayers", "Upstream", "MACAddress", "MaxBitRate", "DuplexMode"})
        expected.insert(std::string("Device.Ethernet.Interface.7.") + name);
    EXPECT_EQ(paths(), expected);
}

TEST_F(NetworkTreeTest, TheIpInstanceShowsTheAddress) {
    TR::NetworkTree::publishInterface(storage_, 1, wiredInterface());
    const std::string branch = "Device.IP.Interface.1.";
    EXPECT_EQ(at(branch + "Enable"), "1");
    EXPECT_EQ(at(branch + "Name"), "eth0");
    EXPECT_EQ(at(branch + "IPv4AddressNumberOfEntries"), "1");
    EXPECT_EQ(at(branch + "IPv4Address.1.IPAddress"), "192.168.1.20");
    EXPECT_EQ(at(branch + "IPv4Address.1.SubnetMask"), "255.255.255.0");
    EXPECT_EQ(at(branch + "Status"), "Up");
    EXPECT_EQ(at(branch + "Alias"), "cpe-eth0");
}

TEST_F(NetworkTreeTest, TheEthernetInstanceShowsTheLink) {
    TR::NetworkTree::publishInterface(storage_, 1, wiredInterface());
    const std::string branch = "Device.Ethernet.Interface.1.";
    EXPECT_EQ(at(branch + "Enable"), "1");
    EXPECT_EQ(at(branch + "Name"), "eth0");
    EXPECT_EQ(at(branch + "Status"), "Up");
    EXPECT_EQ(at(branch + "LowerLayers"), "");
    EXPECT_EQ(at(branch + "Upstream"), "1");
    EXPECT_EQ(at(branch + "MACAddress"), "00:1a:2b:3c:4d:5e");
    EXPECT_EQ(at(branch + "MaxBitRate"), "3000000000");
    EXPECT_EQ(at(branch + "DuplexMode"), "Full");
}

TEST_F(NetworkTreeTest, NumbersAndTextsHaveTheirTypes) {
    TR::NetworkTree::publishInterface(storage_, 1, wiredInterface());
    TR::NetworkTree::publishWiFi(storage_, Interface("wlan0"));
    const std::set<std::string> texts = {"Name",  "IPAddress",   "SubnetMask",    "Status",
                                         "Alias", "LowerLayers", "MACAddress",    "DuplexMode",
                                         "SSID",  "BSSID",       "WPAPassphrase", "WEPPassphrase"};
    for (const std::string& path : paths()) {
        const std::string name = path.substr(path.rfind('.') + 1);
        const auto expected = name.empty()             ? Value::Type::Object
                              : texts.count(name) != 0 ? Value::Type::String
                                                       : Value::Type::Integer;
        EXPECT_EQ(typeAt(path), expected) << path;
    }
}

TEST_F(NetworkTreeTest, EachCounterStandsUnderItsNameInBothInstances) {
    Interface interface = wiredInterface();
    auto& stats = interface.stats;
    std::uint64_t* const figures[] = {&stats.BytesSent,
                                      &stats.BytesReceived,
                                      &stats.PacketsSent,
                                      &stats.PacketsReceived,
                                      &stats.ErrorsSent,
                                      &stats.ErrorsReceived,
                                      &stats.DiscardPacketsSent,
                                      &stats.DiscardPacketsReceived,
                                      &stats.BroadcastPacketsReceived,
                                      &stats.BroadcastPacketsSent,
                                      &stats.MulticastPacketsReceived,
                                      &stats.MulticastPacketsSent,
                                      &stats.UnicastPacketsReceived,
                                      &stats.UnicastPacketsSent,
                                      &stats.UnknownProtoPacketsReceived};
    for (std::size_t i = 0; i < std::size(figures); ++i) *figures[i] = 5'000'000'000 + i;
    TR::NetworkTree::publishInterface(storage_, 1, interface);
    for (std::size_t i = 0; i < std::size(figures); ++i) {
        const std::string name = std::string("Interface.1.Stats.") + kStatsNames[i];
        EXPECT_EQ(at("Device.IP." + name), std::to_string(5'000'000'000 + i)) << name;
        EXPECT_EQ(at("Device.Ethernet." + name), std::to_string(5'000'000'000 + i)) << name;
    }
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

TEST_F(NetworkTreeTest, OnlyTheAliasIsWritableAndNothingIsForcedIntoInforms) {
    for (int round = 0; round < 2; ++round) {
        TR::NetworkTree::publishRoots(storage_);
        TR::NetworkTree::publishInterface(storage_, 1, wiredInterface());
        TR::NetworkTree::publishWiFi(storage_, Interface("wlan0"));
        for (const std::string& path : paths()) {
            const Value value = storage_.getValueCopy(Address(path));
            EXPECT_EQ(value.isMutableByUser(), path == "Device.IP.Interface.1.Alias") << path;
            EXPECT_FALSE(value.isForcedInform()) << path;
            EXPECT_EQ(value.getPathInConfig() + value.filePathToStoreValue(), "") << path;
        }
    }
}

TEST_F(NetworkTreeTest, AnInterfaceWithoutAnAddressHasNoEntries) {
    TR::NetworkTree::publishInterface(storage_, 1, Interface("eth0"));
    EXPECT_EQ(at("Device.IP.Interface.1.IPv4AddressNumberOfEntries"), "0");
    EXPECT_EQ(at("Device.IP.Interface.1.IPv4Address.1.IPAddress"), "");
    EXPECT_EQ(at("Device.IP.Interface.1.Status"), "Error");
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
    const std::string config = kVendor + "Config.WiFiConfig.";
    const std::string status = kVendor + "WiFiStatus.";
    EXPECT_EQ(paths(),
              (std::set<std::string>{kVendor, kVendor + "Config.", config, config + "SSID",
                                     config + "WPAPassphrase", config + "WEPPassphrase", status,
                                     status + "SSID", status + "BSSID", status + "BitRate",
                                     status + "Frequency", status + "Signal"}));
    EXPECT_EQ(at(config + "SSID"), "Home");
    EXPECT_EQ(at(config + "WPAPassphrase"), "wpa");
    EXPECT_EQ(at(config + "WEPPassphrase"), "wep");
    EXPECT_EQ(at(status + "SSID"), "Home: 2");
    EXPECT_EQ(at(status + "BSSID"), "9C:3D:CF:12:AB:EF");
    EXPECT_EQ(at(status + "BitRate"), "780");
    EXPECT_EQ(at(status + "Frequency"), "5180");
    EXPECT_EQ(at(status + "Signal"), "-45");
}

TEST_F(NetworkTreeTest, AliasesAreReadBackByInterfaceName) {
    EXPECT_TRUE(TR::NetworkTree::aliases(storage_).empty());
    TR::NetworkTree::publishInterface(storage_, 1, Interface("eth0"));
    TR::NetworkTree::publishInterface(storage_, 2, Interface("wlan0"));
    ASSERT_TRUE(storage_[Address("Device.IP.Interface.2.Alias")].setByUser("from the ACS"));
    EXPECT_EQ(
        TR::NetworkTree::aliases(storage_),
        (std::map<std::string, std::string>{{"eth0", "cpe-eth0"}, {"wlan0", "from the ACS"}}));
}

TEST_F(NetworkTreeTest, OfANameThatStandsTwiceTheFirstAliasCounts) {
    Interface interface("wlan0");
    interface.alias = "live";
    TR::NetworkTree::publishInterface(storage_, 1, interface);
    interface.alias = "stale";
    TR::NetworkTree::publishInterface(storage_, 2, interface);
    EXPECT_EQ(TR::NetworkTree::aliases(storage_),
              (std::map<std::string, std::string>{{"wlan0", "live"}}));
}

TEST_F(NetworkTreeTest, ReadingAliasesBackMakesNoEntry) {
    TR::NetworkTree::publishInterface(storage_, 1, Interface("eth0"));
    storage_[Address("Device.IP.Interface.2.Name")];  // somebody asked for it in vain
    const auto before = paths();
    EXPECT_EQ(TR::NetworkTree::aliases(storage_).size(), 1U);
    EXPECT_EQ(paths(), before);
}

}  // namespace
