#include "tests/box/DaemonTest.h"
#include "tests/support/GroupMember.h"
#include "tests/support/TreeListing.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using List = std::vector<std::string>;

class WholeTreeTest : public DaemonTest {
  protected:
    // The listing of trctl, so that people and this test see the same.
    static void expectGoldenTree() {
        const std::string output = "/tmp/listing";
        std::filesystem::remove(output);
        Child viewer({KELM_TRCTL_PROGRAM, "list", "--long"}, output);
        EXPECT_EQ(viewer.waitForEnd(), ExitStatus{}) << viewer.output();
        const std::string golden = box::readFile(KELM_GOLDEN_TREE);
        EXPECT_EQ(TreeListing::differences(golden, viewer.output()), "");
    }
    void write(const std::string& address, const std::string& text) {
        EXPECT_TRUE(client().set(address, text).ok) << address;
    }
    void expectToBecome(const std::string& address, const std::string& text) {
        EXPECT_TRUE(box::waitUntil([&] { return value(address) == text; }))
            << address << ": " << value(address);
    }
};

// Each provider is recognised by a command that it alone runs, each command by its second of delay.
TEST_F(WholeTreeTest, TheProvidersFillItInTheirOrder) {
    const char* const order[] = {"sysctl", "chipid_tool", "iw", "netstat", "ps"};
    for (const char* command : order) box::setFault(command, "slow 1");
    startBus();
    launch();
    for (std::size_t i = 0; i + 1 < std::size(order); ++i) {
        ASSERT_TRUE(box::waitForCalls(order[i])) << order[i];
        EXPECT_TRUE(box::calls(order[i + 1]).empty()) << order[i + 1];
    }
    EXPECT_TRUE(box::waitForCalls("ps"));
}

TEST_F(WholeTreeTest, TheTreeMatchesTheGoldenListingAlsoInALaterCycle) {
    const GroupMember player("239.255.0.1", 1234);
    start();
    expectGoldenTree();
    waitForCycles(1);
    expectGoldenTree();
    EXPECT_EQ(box::calls("sysctl").size(), 1U);  // the kernel's settings are asked for once
}

TEST_F(WholeTreeTest, WhatTheAcsWritesReachesItsPlaceAndStaysOverACycle) {
    const std::string code = "Device.DeviceInfo.ProvisioningCode";
    const std::string host = "Device.Services.STBService.1.X_Kelm.Config.SyslogHost";
    const std::string alias = "Device.IP.Interface.2.Alias";
    start();
    write(code, "code 17");
    EXPECT_EQ(box::calls("uci"), List{"uci -q set easycwmp.@local[0].provisioning_code=code 17"});
    write(host, "10.1.2.3");
    EXPECT_EQ(box::readFile("/var/kelm/syslog_host"), "10.1.2.3");
    write(alias, "roof");
    waitForCycles(1);
    EXPECT_EQ(value(code), "code 17");
    EXPECT_EQ(value(host), "10.1.2.3");
    EXPECT_EQ(value(alias), "roof");
    write(host, "");
    EXPECT_FALSE(std::filesystem::exists("/var/kelm/syslog_host"));
    EXPECT_EQ(value(host), "");
}

TEST_F(WholeTreeTest, TheAcsSwitchesMonitoringAndResetsItsTotals) {
    const std::string monitoring = "Device.Services.STBService.1.ServiceMonitoring.";
    const std::string total = monitoring + "MainStream.1.Total.";
    box::writeFile("/sys/class/tsdemux/discontinue_counter", "100\n");
    start();
    write(monitoring + "MainStream.1.Enable", "1");
    write(monitoring + "SampleInterval", "20");
    write(monitoring + "SampleEnable", "1");
    waitForCycles(1);
    EXPECT_EQ(value(monitoring + "MainStream.1.Enable"), "1");
    EXPECT_EQ(value(monitoring + "MainStream.1.Status"), "Enabled");
    EXPECT_EQ(value(monitoring + "SampleInterval"), "20");
    EXPECT_EQ(value(monitoring + "SampleState"), "Enabled");
    EXPECT_EQ(value(total + "MPEG2TSStats.PacketDiscontinuityCounter"), "100");
    write(total + "Reset", "1");
    expectToBecome(total + "Reset", "0");
    EXPECT_EQ(value(total + "MPEG2TSStats.PacketDiscontinuityCounter"), "0");
}

TEST_F(WholeTreeTest, AWatchedChangeRunsTheNotifyCommandOnceAndIsPendingForACycle) {
    const std::string rate = "Device.Ethernet.Interface.1.MaxBitRate";
    start();
    EXPECT_EQ(value(rate), "100");
    watch({rate});
    box::writeFile("/sys/class/net/eth0/speed", "1000\n");
    ASSERT_TRUE(box::waitForCalls("ubus"));
    EXPECT_EQ(client().checkValueChange().text, change(rate, "1000"));
    EXPECT_EQ(value(rate), "1000");
    EXPECT_TRUE(box::waitUntil([this] { return client().checkValueChange().text.empty(); }));
    EXPECT_EQ(box::calls("ubus"), List{box::kNotifyCommand});
}

}  // namespace
