#include "providers/NetworkDataProvider.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <sstream>

namespace {

using Interface = TR::NetworkDataProvider::Interface;
using Status = Interface::Status;
using DuplexMode = Interface::DuplexMode;

template <class Printable>
std::string printed(const Printable& printable) {
    std::ostringstream stream;
    stream << printable;
    return stream.str();
}

TEST(NetworkInterfaceTest, EveryStatusAndDuplexModeHasItsText) {
    EXPECT_STREQ(Interface::statusToString(Status::Up), "Up");
    EXPECT_STREQ(Interface::statusToString(Status::Down), "Down");
    EXPECT_STREQ(Interface::statusToString(Status::Dormant), "Dormant");
    EXPECT_STREQ(Interface::statusToString(Status::NotPresent), "NotPresent");
    EXPECT_STREQ(Interface::statusToString(Status::LowerLayerDown), "LowerLayerDown");
    EXPECT_STREQ(Interface::statusToString(Status::Error), "Error");
    EXPECT_STREQ(Interface::duplexModeToString(DuplexMode::Auto), "Auto");
    EXPECT_STREQ(Interface::duplexModeToString(DuplexMode::Full), "Full");
    EXPECT_STREQ(Interface::duplexModeToString(DuplexMode::Half), "Half");
}

TEST(NetworkInterfaceTest, ANewOneHasItsDefaultAliasAndAChangeOfStatusItsMoment) {
    const NSTime before = NSTime::nowRelative();
    Interface interface("wlan1");
    EXPECT_EQ(interface.name, "wlan1");
    EXPECT_EQ(interface.alias, "cpe-wlan1");
    EXPECT_GE(interface.lastChange, before);
    EXPECT_LE(interface.lastChange, NSTime::nowRelative());
    interface.lastChange = 0;
    interface.changeStatus(Status::Dormant);
    EXPECT_EQ(interface.status, Status::Dormant);
    EXPECT_GE(interface.lastChange, before);
    EXPECT_LE(interface.lastChange, NSTime::nowRelative());
}

TEST(NetworkInterfaceTest, StatsPrintAsALabelledBlock) {
    Interface::Stats stats;
    stats.BytesSent = 1;
    stats.BytesReceived = 18446744073709551615U;
    stats.PacketsSent = 98;
    stats.PacketsReceived = 99;
    stats.ErrorsSent = 3;
    stats.ErrorsReceived = 4;
    stats.DiscardPacketsSent = 5;
    stats.DiscardPacketsReceived = 6;
    stats.UnicastPacketsSent = 7;
    stats.UnicastPacketsReceived = 8;
    stats.MulticastPacketsSent = 9;
    stats.MulticastPacketsReceived = 10;
    stats.BroadcastPacketsSent = 11;
    stats.BroadcastPacketsReceived = 12;
    stats.UnknownProtoPacketsReceived = 13;
    EXPECT_EQ(printed(stats),
              "======Stats======\n"
              "Bytes Sent: 1\n"
              "Bytes Received: 18446744073709551615\n"
              "Errors Sent: 3\n"
              "Errors Received: 4\n"
              "Discard Packets Sent: 5\n"
              "Discard Packets Received: 6\n"
              "Unicast Packets Sent: 7\n"
              "Unicast Packets Received: 8\n"
              "Multicast Packets Sent: 9\n"
              "Multicast Packets Received: 10\n"
              "Broadcast PacketsSent: 11\n"
              "Broadcast Packets Received: 12\n"
              "Unknown Proto Packets Received: 13\n"
              "======Stats end======\n");
}

TEST(NetworkInterfaceTest, AnInterfacePrintsAsALabelledBlock) {
    ASSERT_EQ(setenv("TZ", "UTC", 1), 0);
    tzset();
    Interface interface("eth0");
    interface.alias = "Living room";
    interface.hardwareAddress = "00:1a:2b:3c:4d:5e";
    interface.ipv4Address = "192.168.1.20";
    interface.subnetMask = "255.255.255.0";
    interface.enable = true;
    interface.status = Status::LowerLayerDown;
    interface.lastChange = 93'784'000'000;
    EXPECT_EQ(printed(interface),
              "======Interface======\n"
              "Name: eth0\n"
              "Alias: Living room\n"
              "Hw Address: 00:1a:2b:3c:4d:5e\n"
              "Address: 192.168.1.20\n"
              "Mask: 255.255.255.0\n"
              "Enable: 1\n"
              "Status: LowerLayerDown\n"
              "Last Change: 1970-01-02 02:03:04\n"
              "======Interface end======\n");
}

}  // namespace
