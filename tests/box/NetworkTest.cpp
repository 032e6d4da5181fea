#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using List = std::vector<std::string>;

const std::string kIp = "Device.IP.Interface.";
const std::string kEthernet = "Device.Ethernet.Interface.";
const std::string kVendor = "Device.Services.STBService.1.X_Kelm.";

void sendDatagrams(const char* host, int count, std::size_t bytes) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(9);  // discard
    inet_pton(AF_INET, host, &address.sin_addr);
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const std::string datagram(bytes, 'x');
    for (int i = 0; i < count; ++i) {
        sendto(descriptor, datagram.data(), datagram.size(), 0,
               reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }
    close(descriptor);
}

class NetworkTest : public DaemonTest {
  protected:
    void run(const std::string& command) { ASSERT_EQ(std::system(command.c_str()), 0) << command; }
    bool becomes(const std::string& address, const std::string& text) {
        return box::waitUntil([&] { return value(address) == text; });
    }
    List interfaceNames() {
        List names;
        for (int i = 1; !value(kIp + std::to_string(i) + ".Name").empty(); ++i)
            names.push_back(value(kIp + std::to_string(i) + ".Name"));
        return names;
    }
};

TEST_F(NetworkTest, AWatchedLinkSpeedThatChangesIsSeenEndToEnd) {
    start();
    const std::string rate = kEthernet + "1.MaxBitRate";
    EXPECT_EQ(value(rate), "100");
    watch({rate});
    box::writeFile("/sys/class/net/eth0/speed", "1000\n");
    ASSERT_TRUE(box::waitUntil([] { return !box::calls("ubus").empty(); }));
    EXPECT_EQ(client().checkValueChange().text, change(rate, "1000"));
    waitForCycles(1);
    EXPECT_EQ(value(rate), "1000");
    EXPECT_EQ(box::calls("ubus"), List{"ubus -t 1 call tr069 notify"});
    EXPECT_TRUE(box::waitUntil([this] { return client().checkValueChange().text.empty(); }));
}

TEST_F(NetworkTest, OnlyTheBoxsOwnInterfacesArePublished) {
    run("ip link add usb0 type veth peer name veth0 && ip link add link eth0 name eth0.100 type "
        "vlan id 100"
        " || true");
    start();
    EXPECT_EQ(interfaceNames(), (List{"eth0", "wlan0"}));
}

TEST_F(NetworkTest, AddressesThatAreSetChangedAndTakenAwayAreFollowed) {
    start();
    const std::string address = kIp + "1.IPv4Address.1.IPAddress";
    const std::string mask = kIp + "1.IPv4Address.1.SubnetMask";
    const std::string count = kIp + "1.IPv4AddressNumberOfEntries";
    EXPECT_EQ(value(address) + " " + value(mask) + " " + value(count),
              "192.168.1.20 255.255.255.0 1");
    run("ip addr flush dev eth0 && ip addr add 10.1.2.3/16 dev eth0");
    EXPECT_TRUE(becomes(address, "10.1.2.3"));
    EXPECT_EQ(value(mask), "255.255.0.0");
    run("ip addr flush dev eth0");
    EXPECT_TRUE(becomes(address, ""));
    EXPECT_EQ(value(mask), "");
    EXPECT_EQ(value(count), "0");
}

TEST_F(NetworkTest, AVanishedInterfaceKeepsItsInstanceAndReturnsToIt) {
    start();
    run("ip link set eth0 down && ip link set eth0 name away0");
    EXPECT_TRUE(becomes(kIp + "1.Status", "NotPresent"));
    EXPECT_EQ(interfaceNames(), (List{"eth0", "wlan0"}));
    EXPECT_EQ(value(kIp + "1.Enable"), "0");
    run("ip link set away0 name eth0 && ip link set eth0 up");
    EXPECT_TRUE(becomes(kIp + "1.Status", "Up"));
    EXPECT_EQ(interfaceNames(), (List{"eth0", "wlan0"}));
}

TEST_F(NetworkTest, AnInterfaceThatSortsFirstShiftsTheOthers) {
    run("ip link set wlan0 down && ip link set wlan0 name wlan1");
    start();
    EXPECT_EQ(interfaceNames(), (List{"eth0", "wlan1"}));
    ASSERT_TRUE(client().set(kIp + "1.Alias", "living room").ok);
    run("ip link add eth00 type veth peer name peer-eth00");  // sorts behind eth0
    EXPECT_TRUE(becomes(kIp + "2.Name", "eth00"));
    EXPECT_EQ(interfaceNames(), (List{"eth0", "eth00", "wlan1"}));
    run("ip link add wlan0 type veth peer name peer-wlan00");
    EXPECT_TRUE(becomes(kIp + "4.Name", "wlan1"));
    EXPECT_EQ(interfaceNames(), (List{"eth0", "eth00", "wlan0", "wlan1"}));
    EXPECT_EQ(value(kIp + "1.Alias"), "living room");
}

TEST_F(NetworkTest, AnAliasFollowsItsInterfaceWhenTheNumbersShift) {
    start();
    ASSERT_TRUE(client().set(kIp + "2.Alias", "roof").ok);
    run("ip link add eth1 type veth peer name peer-eth1");
    EXPECT_TRUE(becomes(kIp + "3.Name", "wlan0"));
    EXPECT_EQ(value(kIp + "3.Alias"), "roof");
    EXPECT_EQ(value(kIp + "2.Alias"), "cpe-eth1");
}

TEST_F(NetworkTest, OnlyTheAliasIsWritable) {
    start();
    for (const std::string& address : client().listParametersOnly().list) {
        if (address.rfind("Device.IP.", 0) != 0 && address.rfind("Device.Ethernet.", 0) != 0)
            continue;
        const bool isAlias = address.size() > 6 && address.rfind(".Alias") == address.size() - 6;
        EXPECT_EQ(client().getWritable(address).text, isAlias ? "1" : "0") << address;
    }
    EXPECT_EQ(client().getWritable(kVendor + "Config.WiFiConfig.WPAPassphrase").text, "0");
}

TEST_F(NetworkTest, RealTrafficIsCounted) {
    start();
    const std::string sent = kIp + "1.Stats.BytesSent";
    const long long before = std::atoll(value(sent).c_str());
    run("ip neigh replace 192.168.1.77 lladdr 02:00:00:00:00:77 dev eth0 nud permanent");
    sendDatagrams("192.168.1.77", 10, 1000);
    EXPECT_TRUE(
        box::waitUntil([&] { return std::atoll(value(sent).c_str()) >= before + 10 * 1000; }));
    EXPECT_EQ(value(sent), value(kEthernet + "1.Stats.BytesSent"));
}

TEST_F(NetworkTest, TheWiFiBranchFollowsTheLink) {
    start();
    EXPECT_EQ(value(kVendor + "WiFiStatus.SSID"), "Kelm Home");
    EXPECT_EQ(value(kVendor + "WiFiStatus.Signal"), "-45");
    box::writeFile("/run/kelm-box/iw/wlan0", "Not connected.\n");
    EXPECT_TRUE(becomes(kVendor + "WiFiStatus.SSID", ""));
    EXPECT_EQ(value(kVendor + "WiFiStatus.Signal"), "0");
    EXPECT_EQ(value(kVendor + "WiFiStatus.BSSID"), "");
}

TEST_F(NetworkTest, ABoxWithoutWirelessHasNoWiFiBranch) {
    run("ip link del wlan0");
    start();
    for (const std::string& address : client().listAddresses().list) {
        EXPECT_EQ(address.find("WiFi"), std::string::npos) << address;
        EXPECT_NE(address, kVendor);
        EXPECT_NE(address, kVendor + "Config.");
    }
}

}  // namespace
