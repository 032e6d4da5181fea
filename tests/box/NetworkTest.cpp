#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

using List = std::vector<std::string>;

const std::string kIp = "Device.IP.Interface.";
const std::string kEthernet = "Device.Ethernet.Interface.";

using NetworkTest = DaemonTest;

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

TEST_F(NetworkTest, AnAliasFollowsItsInterfaceWhenTheNumbersShift) {
    start();
    ASSERT_TRUE(client().set(kIp + "2.Alias", "roof").ok);
    ASSERT_EQ(std::system("ip link add eth1 type veth peer name peer-eth1"), 0);
    EXPECT_TRUE(box::waitUntil([this] { return value(kIp + "3.Name") == "wlan0"; }));
    EXPECT_EQ(value(kIp + "3.Alias"), "roof");
    EXPECT_EQ(value(kIp + "2.Alias"), "cpe-eth1");
}

}  // namespace
