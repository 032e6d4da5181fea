#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using List = std::vector<std::string>;

class ParametersTest : public DaemonTest {
  protected:
    void SetUp() override { start(); }
};

TEST_F(ParametersTest, WhatTheAcsWritesReachesItsPlaceAndStaysOverACycle) {
    const std::string code = "Device.DeviceInfo.ProvisioningCode";
    const std::string host = "Device.Services.STBService.1.X_Kelm.Config.SyslogHost";
    const std::string alias = "Device.IP.Interface.2.Alias";
    ASSERT_TRUE(client().set(code, "code 17").ok);
    EXPECT_EQ(box::calls("uci"), List{"uci -q set easycwmp.@local[0].provisioning_code=code 17"});
    ASSERT_TRUE(client().set(host, "10.1.2.3").ok);
    EXPECT_EQ(box::readFile("/var/kelm/syslog_host"), "10.1.2.3");
    ASSERT_TRUE(client().set(alias, "roof").ok);
    waitForCycles(1);
    EXPECT_EQ(value(code), "code 17");
    EXPECT_EQ(value(host), "10.1.2.3");
    EXPECT_EQ(value(alias), "roof");
    ASSERT_TRUE(client().set(host, "").ok);
    EXPECT_FALSE(std::filesystem::exists("/var/kelm/syslog_host"));
    EXPECT_EQ(value(host), "");
}

TEST_F(ParametersTest, AWatchedChangeRunsTheNotifyCommandOnceAndIsPendingForACycle) {
    const std::string rate = "Device.Ethernet.Interface.1.MaxBitRate";
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
