#include "tests/unit/providers/NetworkBoxTest.h"

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace {

using Calls = std::vector<std::string>;

const std::string kVendor = "Device.Services.STBService.1.X_Kelm.";

class NetworkWiFiTest : public NetworkBoxTest {
  protected:
    std::string status(const std::string& name) const { return at(kVendor + "WiFiStatus." + name); }
    std::string config(const std::string& name) const {
        return at(kVendor + "Config.WiFiConfig." + name);
    }
    std::string configs() const {
        return config("SSID") + "|" + config("WPAPassphrase") + "|" + config("WEPPassphrase");
    }
    std::string link() const {
        return status("SSID") + "|" + status("BSSID") + "|" + status("Frequency") + "|" +
               status("Signal") + "|" + status("BitRate");
    }
};

constexpr char kNoLink[] = "||0|0|0";

TEST_F(NetworkWiFiTest, AWiredInterfaceHasNoWiFiBranch) {
    run("ip link del wlan0");
    box::writeFile("/var/kelm/network.eth0", "wifi_ssid=wired\n");
    provider_.updateValues();
    EXPECT_TRUE(below("Device.Services.").empty());
    EXPECT_TRUE(box::calls("iw").empty());
}

TEST_F(NetworkWiFiTest, TheSettingsAreTheFiles) {
    provider_.updateValues();
    EXPECT_EQ(configs(), "Kelm Home|correct horse=battery|");
    box::writeFile("/var/kelm/network.wlan0", "WIFI_SSID =Other\nwifi_wep_passphrase= a b");
    provider_.updateValues();
    EXPECT_EQ(configs(), "Other|| a b");
    std::filesystem::remove("/var/kelm/network.wlan0");
    provider_.updateValues();
    EXPECT_EQ(configs(), "||");
}

TEST_F(NetworkWiFiTest, TheLinkIsWhatTheToolPrintsAndNoLinkWhenItFails) {
    provider_.updateValues();
    EXPECT_EQ(box::calls("iw"), (Calls{"iw wlan0 link"}));
    EXPECT_EQ(link(), "Kelm Home|9C:3D:CF:12:AB:EF|5180|-45|780");
    for (const char* fault : {"exit 1", "silent", "garbage", "flood"}) {
        box::setFault("iw", fault);
        EXPECT_TRUE(provider_.updateValues());
        EXPECT_EQ(link(), kNoLink);
    }
    box::setFault("iw", "");
    provider_.updateValues();
    EXPECT_EQ(status("SSID"), "Kelm Home");
    std::filesystem::remove("/run/kelm-box/iw/wlan0");
    provider_.updateValues();
    EXPECT_EQ(link(), kNoLink);
}

TEST_F(NetworkWiFiTest, AVanishedInterfaceHasNoLinkAndTheToolIsNotRun) {
    provider_.updateValues();
    run("ip link del wlan0");
    box::clearCalls("iw");
    provider_.updateValues();
    EXPECT_EQ(link(), kNoLink);
    EXPECT_EQ(config("SSID"), "Kelm Home");
    EXPECT_TRUE(box::calls("iw").empty());
}

TEST_F(NetworkWiFiTest, OfSeveralWirelessInterfacesTheLastByNameIsPublishedWithoutFlutter) {
    addInterface("wlan1");
    box::writeFile("/var/kelm/network.wlan1", "wifi_ssid=Upstairs\n");
    box::writeFile("/run/kelm-box/iw/wlan1", "\tSSID: Upstairs\n");
    provider_.updateValues();
    EXPECT_EQ(config("SSID"), "Upstairs");
    EXPECT_EQ(link(), "Upstairs||0|0|0");
    provider_.updateValues();
    EXPECT_EQ(changed().count(kVendor + "WiFiStatus.SSID"), 0U);
}

TEST_F(NetworkWiFiTest, TheStoreMutexIsFreeWhileTheToolRuns) {
    box::setFault("iw", "slow 3");
    std::thread refresh([this] { provider_.updateValues(); });
    EXPECT_TRUE(box::waitForCalls("iw"));
    EXPECT_TRUE(isStoreFree());
    refresh.join();
}

TEST_F(NetworkWiFiTest, WhatIsReadFromOneInterfaceCanBeAskedForByName) {
    EXPECT_EQ(TR::NetworkDataProvider::getWiFiConfig("wlan0").ssid, "Kelm Home");
    EXPECT_EQ(TR::NetworkDataProvider::getWiFiStatus("wlan0").signal, -45);
    EXPECT_EQ(TR::NetworkDataProvider::getInterfaceSpeed("eth0"), 100U);
    EXPECT_EQ(TR::NetworkDataProvider::getDuplexMode("eth0"),
              TR::NetworkDataProvider::Interface::DuplexMode::Full);
}

}  // namespace
