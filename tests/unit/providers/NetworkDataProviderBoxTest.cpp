#include "tests/unit/providers/NetworkBoxTest.h"

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <sys/resource.h>

namespace {

using Names = std::vector<std::string>;
using Paths = std::set<std::string>;

using NetworkDataProviderTest = NetworkBoxTest;

// With no descriptor to spare the kernel cannot be asked.
class NoDescriptors {
  public:
    NoDescriptors() {
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit none{0, before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }

  private:
    rlimit before_{};
};

TEST_F(NetworkDataProviderTest, EthernetAndWiFiInterfacesArePublishedInTextOrderAndNoOthers) {
    for (const char* name : {"usb0", "eth0.100", "veth0", "p2p-wlan0-0", "ethernet0", "eth", "wlan",
                             "eth0a", "ETH0", "br-eth0", "eth10", "eth2"})
        addInterface(name);
    ASSERT_TRUE(provider_.updateValues());
    EXPECT_EQ(publishedNames(), (Names{"eth0", "eth10", "eth2", "wlan0"}));
    EXPECT_EQ(ethernet(2, "Name"), "eth10");
    EXPECT_EQ(provider_.interfaces().size(), 4U);
}

TEST_F(NetworkDataProviderTest, AnInterfaceHasTheKernelsAddressesAndFollowsThem) {
    provider_.updateValues();
    EXPECT_EQ(ethernet(1, "MACAddress"), "00:1a:2b:3c:4d:5e");
    EXPECT_EQ(ip(1, "IPv4Address.1.IPAddress"), "192.168.1.20");
    EXPECT_EQ(ip(1, "IPv4Address.1.SubnetMask"), "255.255.255.0");
    run("ip address flush dev eth0 && ip address add 10.1.2.3/9 dev eth0");
    run("ip link set eth0 address 02:00:00:AB:CD:EF");
    provider_.updateValues();
    EXPECT_EQ(ethernet(1, "MACAddress"), "02:00:00:ab:cd:ef");
    EXPECT_EQ(ip(1, "IPv4Address.1.IPAddress"), "10.1.2.3");
    EXPECT_EQ(ip(1, "IPv4Address.1.SubnetMask"), "255.128.0.0");
    EXPECT_EQ(ip(1, "IPv4AddressNumberOfEntries"), "1");
    EXPECT_EQ(ethernet(2, "MACAddress"), "00:1a:2b:3c:4d:5f");
    EXPECT_EQ(ip(2, "IPv4Address.1.IPAddress"), "192.168.2.20");
}

TEST_F(NetworkDataProviderTest, AnAddressThatIsTakenAwayLeavesEmptyTexts) {
    provider_.updateValues();
    run("ip address flush dev eth0");
    provider_.updateValues();
    EXPECT_EQ(ip(1, "IPv4Address.1.IPAddress") + ip(1, "IPv4Address.1.SubnetMask"), "");
    EXPECT_EQ(ip(1, "IPv4AddressNumberOfEntries"), "0");
    EXPECT_EQ(ip(1, "Status"), "Up");
}

TEST_F(NetworkDataProviderTest, OfSeveralAddressesThePrimaryOneIsPublished) {
    run("ip address add 192.168.1.21/24 dev eth0");
    run("ip address add 10.0.0.1/8 dev eth0 label eth0:1");
    provider_.updateValues();
    EXPECT_EQ(ip(1, "IPv4Address.1.IPAddress"), "192.168.1.20");
    EXPECT_EQ(ip(1, "IPv4AddressNumberOfEntries"), "1");
    EXPECT_EQ(publishedNames(), (Names{"eth0", "wlan0"}));
}

TEST_F(NetworkDataProviderTest, EnableIsTheAdministrativeFlag) {
    provider_.updateValues();
    EXPECT_EQ(ip(1, "Enable"), "1");
    EXPECT_EQ(ethernet(1, "Enable"), "1");
    run("ip link set eth0 down");
    provider_.updateValues();
    EXPECT_EQ(ip(1, "Enable"), "0");
    EXPECT_EQ(ethernet(1, "Enable"), "0");
    EXPECT_EQ(ip(1, "Status"), "Down");
    EXPECT_EQ(ip(2, "Enable"), "1");
}

TEST_F(NetworkDataProviderTest, AnUnknownStateWithoutCarrierIsAnError) {
    setKernelFile("eth0", "operstate", "unknown\n");
    run("ip link set peer-eth0 down");
    // The kernel reports up to a second later that the carrier is gone.
    EXPECT_TRUE(box::waitUntil([this] {
        provider_.updateValues();
        return ip(1, "Status") == "Error" && ethernet(1, "Status") == "Error";
    }));
    EXPECT_EQ(ip(1, "Enable"), "1");
}

TEST_F(NetworkDataProviderTest, OnlyAChangeOfStatusMovesTheLastChange) {
    provider_.updateValues();
    const NSTime first = provider_.interfaces().at("eth0").lastChange;
    const NSTime firstOfOther = provider_.interfaces().at("wlan0").lastChange;
    run("ip address flush dev eth0");
    setKernelFile("eth0", "speed", "10\n");
    provider_.updateValues();
    EXPECT_EQ(provider_.interfaces().at("eth0").lastChange, first);
    setKernelFile("eth0", "operstate", "dormant\n");
    provider_.updateValues();
    EXPECT_EQ(ip(1, "Status"), "Dormant");
    EXPECT_EQ(ethernet(1, "Status"), "Dormant");
    const NSTime second = provider_.interfaces().at("eth0").lastChange;
    EXPECT_GT(second, first);
    provider_.updateValues();
    EXPECT_EQ(provider_.interfaces().at("eth0").lastChange, second);
    EXPECT_EQ(provider_.interfaces().at("wlan0").lastChange, firstOfOther);
}

TEST_F(NetworkDataProviderTest, LastChangeCountsUpAndRestartsAtAChange) {
    provider_.updateValues();
    const auto lastChange = [this] {
        provider_.updateValues();
        return std::stoll(ethernet(1, "LastChange"));
    };
    ASSERT_TRUE(box::waitUntil([&] { return lastChange() >= 2; }));
    setKernelFile("eth0", "operstate", "down\n");
    const NSTime before = NSTime::nowRelative();
    const long long seconds = lastChange();
    EXPECT_LE(seconds, (NSTime::nowRelative() - before).toTimeT());
}

TEST_F(NetworkDataProviderTest, SpeedAndDuplexAreTheKernelsFigures) {
    setKernelFile("eth0", "speed", "1000\n");
    setKernelFile("eth0", "duplex", "half\n");
    provider_.updateValues();
    EXPECT_EQ(ethernet(1, "MaxBitRate"), "1000");
    EXPECT_EQ(ethernet(1, "DuplexMode"), "Half");
    std::filesystem::remove("/sys/class/net/eth0/speed");
    setKernelFile("eth0", "duplex", "full\n");
    provider_.updateValues();
    EXPECT_EQ(ethernet(1, "MaxBitRate"), "0");
    EXPECT_EQ(ethernet(1, "DuplexMode"), "Full");
}

TEST_F(NetworkDataProviderTest, AnInterfaceThatSortsFirstShiftsTheOthers) {
    run("ip link set eth0 down && ip link set eth0 name eth1 && ip link set eth1 up");
    setKernelFile("eth1", "operstate", "up\n");
    provider_.updateValues();
    EXPECT_EQ(publishedNames(), (Names{"eth1", "wlan0"}));
    addInterface("eth0");
    provider_.updateValues();
    EXPECT_EQ(publishedNames(), (Names{"eth0", "eth1", "wlan0"}));
    EXPECT_EQ(ip(1, "IPv4Address.1.IPAddress"), "10.0.0.1");
    EXPECT_EQ(ip(2, "IPv4Address.1.IPAddress"), "192.168.1.20");
    EXPECT_EQ(ethernet(3, "MACAddress"), "00:1a:2b:3c:4d:5f");
}

TEST_F(NetworkDataProviderTest, AnInstanceThatIsNoLongerWrittenKeepsItsLastValues) {
    provider_.updateValues();
    const auto before = below("Device.");
    run("ip link del wlan0");
    // One that never saw wlan0 does not write its instance.
    TR::NetworkDataProvider later(&storage_);
    setKernelFile("eth0", "operstate", "dormant\n");
    ASSERT_TRUE(later.updateValues());
    EXPECT_EQ(ip(1, "Status"), "Dormant");
    EXPECT_EQ(ip(2, "Name"), "wlan0");
    EXPECT_EQ(ip(2, "Status"), "Up");
    EXPECT_EQ(ip(2, "IPv4Address.1.IPAddress"), "192.168.2.20");
    EXPECT_EQ(at("Device.Services.STBService.1.X_Kelm.WiFiStatus.SSID"), "Kelm Home");
    EXPECT_EQ(below("Device."), before);
}

TEST_F(NetworkDataProviderTest, AVanishedInterfaceKeepsItsPlaceAndReturnsThere) {
    provider_.updateValues();
    const auto before = below("Device.");
    const NSTime moment = NSTime::nowRelative();
    run("ip link del eth0");
    provider_.updateValues();
    EXPECT_EQ(publishedNames(), (Names{"eth0", "wlan0"}));
    for (const std::string& status : {ip(1, "Status"), ethernet(1, "Status")})
        EXPECT_EQ(status, "NotPresent");
    EXPECT_EQ(ip(1, "Enable") + ethernet(1, "Enable"), "00");
    EXPECT_EQ(ip(1, "IPv4AddressNumberOfEntries"), "0");
    EXPECT_EQ(ip(1, "IPv4Address.1.IPAddress") + ip(1, "IPv4Address.1.SubnetMask"), "");
    EXPECT_EQ(ethernet(1, "MACAddress"), "");
    EXPECT_EQ(ethernet(1, "MaxBitRate"), "0");
    EXPECT_EQ(ethernet(1, "DuplexMode"), "Auto");
    EXPECT_EQ(ip(2, "Status"), "Up");
    const NSTime change = provider_.interfaces().at("eth0").lastChange;
    EXPECT_GE(change, moment);
    provider_.updateValues();
    EXPECT_EQ(provider_.interfaces().at("eth0").lastChange, change);

    addInterface("eth0");
    provider_.updateValues();
    EXPECT_EQ(ip(1, "Name"), "eth0");
    EXPECT_EQ(ip(1, "Status"), "Up");
    EXPECT_EQ(ip(1, "Enable"), "1");
    EXPECT_EQ(ip(1, "IPv4Address.1.IPAddress"), "10.0.0.1");
    EXPECT_EQ(ethernet(1, "MaxBitRate"), "100");
    EXPECT_EQ(below("Device."), before);
}

TEST_F(NetworkDataProviderTest, ABoxWithoutInterfacesHasOnlyTheRoots) {
    run("ip link del eth0 && ip link del wlan0");
    EXPECT_TRUE(provider_.updateValues());
    EXPECT_EQ(below("Device."),
              (Paths{"IP.", "IP.Interface.", "Ethernet.", "Ethernet.Interface."}));
}

TEST_F(NetworkDataProviderTest, OnlyWhatChangesIsRecordedAndTheTimes) {
    run("ip link del wlan0");
    provider_.updateValues();
    EXPECT_EQ(changed(), Paths{});
    setKernelFile("eth0", "speed", "1000\n");
    ASSERT_TRUE(box::waitUntil([this] {
        provider_.updateValues();
        return ip(1, "LastChange") != "0";
    }));
    EXPECT_EQ(changed(), (Paths{"Device.Ethernet.Interface.1.LastChange",
                                "Device.Ethernet.Interface.1.MaxBitRate",
                                "Device.IP.Interface.1.LastChange"}));
}

TEST_F(NetworkDataProviderTest, WhenTheKernelCannotBeAskedEverythingStays) {
    provider_.updateValues();
    setKernelFile("eth0", "speed", "10\n");
    {
        const NoDescriptors none;
        EXPECT_FALSE(provider_.load());
        EXPECT_FALSE(provider_.updateValues());
    }
    EXPECT_EQ(ethernet(1, "MaxBitRate"), "100");
    EXPECT_EQ(ip(1, "Status"), "Up");
    EXPECT_TRUE(provider_.updateValues());
    EXPECT_EQ(ethernet(1, "MaxBitRate"), "10");
}

TEST_F(NetworkDataProviderTest, LoadingAloneLeavesTheStoreAlone) {
    EXPECT_TRUE(provider_.load());
    EXPECT_TRUE(storage_.listAddresses().empty());
    EXPECT_TRUE(provider_.store());
    EXPECT_EQ(publishedNames(), (Names{"eth0", "wlan0"}));
}

TEST_F(NetworkDataProviderTest, WithoutAStoreNothingIsPublished) {
    TR::NetworkDataProvider provider(nullptr);
    EXPECT_TRUE(provider.load());
    EXPECT_FALSE(provider.store());
    EXPECT_FALSE(provider.updateValues());
}

}  // namespace
