#include "tests/unit/providers/NetworkBoxTest.h"

#include <cerrno>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace {

using Calls = std::vector<std::string>;

const std::string kVendor = "Device.Services.STBService.1.X_Kelm.";

class NetworkWiFiTest : public NetworkBoxTest {
  protected:
    std::string config(const std::string& name) const {
        return at(kVendor + "Config.WiFiConfig." + name);
    }
    std::string status(const std::string& name) const { return at(kVendor + "WiFiStatus." + name); }

    void expectNoLink() const {
        EXPECT_EQ(status("SSID"), "");
        EXPECT_EQ(status("BSSID"), "");
        EXPECT_EQ(status("Frequency"), "0");
        EXPECT_EQ(status("Signal"), "0");
        EXPECT_EQ(status("BitRate"), "0");
    }
};

TEST_F(NetworkWiFiTest, ABoxWithWlan0PublishesBothObjects) {
    provider_.updateValues();
    EXPECT_EQ(
        below(kVendor),
        (std::set<std::string>{"", "Config.", "Config.WiFiConfig.", "Config.WiFiConfig.SSID",
                               "Config.WiFiConfig.WPAPassphrase", "Config.WiFiConfig.WEPPassphrase",
                               "WiFiStatus.", "WiFiStatus.SSID", "WiFiStatus.BitRate",
                               "WiFiStatus.BSSID", "WiFiStatus.Frequency", "WiFiStatus.Signal"}));
}

TEST_F(NetworkWiFiTest, AWiredInterfaceHasNoWiFiBranch) {
    run("ip link del wlan0");
    box::writeFile("/var/kelm/network.eth0", "wifi_ssid=wired\n");
    provider_.updateValues();
    EXPECT_TRUE(below("Device.Services.").empty());
    EXPECT_TRUE(box::calls("iw").empty());
}

TEST_F(NetworkWiFiTest, TheSettingsAreTheFiles) {
    provider_.updateValues();
    EXPECT_EQ(config("SSID"), "Kelm Home");
    EXPECT_EQ(config("WPAPassphrase"), "correct horse=battery");
    EXPECT_EQ(config("WEPPassphrase"), "");
    box::writeFile("/var/kelm/network.wlan0", "WIFI_SSID =Other\nwifi_wep_passphrase= a b");
    provider_.updateValues();
    EXPECT_EQ(config("SSID"), "Other");
    EXPECT_EQ(config("WPAPassphrase"), "");
    EXPECT_EQ(config("WEPPassphrase"), " a b");
}

TEST_F(NetworkWiFiTest, WithoutASettingsFileTheTextsAreEmpty) {
    std::filesystem::remove("/var/kelm/network.wlan0");
    provider_.updateValues();
    EXPECT_EQ(config("SSID") + config("WPAPassphrase") + config("WEPPassphrase"), "");
}

TEST_F(NetworkWiFiTest, TheLinkIsWhatTheToolPrints) {
    provider_.updateValues();
    EXPECT_EQ(box::calls("iw"), (Calls{"iw wlan0 link"}));
    EXPECT_EQ(status("SSID"), "Kelm Home");
    EXPECT_EQ(status("BSSID"), "9C:3D:CF:12:AB:EF");
    EXPECT_EQ(status("Frequency"), "5180");
    EXPECT_EQ(status("Signal"), "-45");
    EXPECT_EQ(status("BitRate"), "780");
}

TEST_F(NetworkWiFiTest, ALinkThatIsLostLeavesNoFigures) {
    provider_.updateValues();
    std::filesystem::remove("/run/kelm-box/iw/wlan0");
    provider_.updateValues();
    expectNoLink();
    EXPECT_EQ(config("SSID"), "Kelm Home");
}

TEST_F(NetworkWiFiTest, AToolThatFailsLeavesNoLink) {
    provider_.updateValues();
    for (const char* fault : {"exit 1", "silent", "garbage", "flood"}) {
        box::setFault("iw", fault);
        EXPECT_TRUE(provider_.updateValues());
        expectNoLink();
    }
    box::setFault("iw", "");
    provider_.updateValues();
    EXPECT_EQ(status("SSID"), "Kelm Home");
}

TEST_F(NetworkWiFiTest, ALastLineWithoutALineFeedCounts) {
    box::writeFile("/run/kelm-box/iw/wlan0", "\tSSID: Kelm Home ");
    provider_.updateValues();
    EXPECT_EQ(status("SSID"), "Kelm Home ");
}

TEST_F(NetworkWiFiTest, AVanishedInterfaceHasNoLinkAndTheToolIsNotRun) {
    provider_.updateValues();
    run("ip link del wlan0");
    box::clearCalls("iw");
    provider_.updateValues();
    expectNoLink();
    EXPECT_EQ(config("SSID"), "Kelm Home");
    EXPECT_TRUE(box::calls("iw").empty());
}

TEST_F(NetworkWiFiTest, OfSeveralWirelessInterfacesTheLastByNameIsPublishedWithoutFlutter) {
    addInterface("wlan1", "10.0.0.1/8");
    box::writeFile("/var/kelm/network.wlan1", "wifi_ssid=Upstairs\n");
    box::writeFile("/run/kelm-box/iw/wlan1", "\tSSID: Upstairs\n");
    provider_.updateValues();
    EXPECT_EQ(config("SSID"), "Upstairs");
    EXPECT_EQ(status("SSID"), "Upstairs");
    EXPECT_EQ(status("BSSID"), "");
    provider_.updateValues();
    EXPECT_EQ(storage_.updates().count(TR::Address(kVendor + "WiFiStatus.SSID")), 0U);
}

TEST_F(NetworkWiFiTest, TheStoreMutexIsFreeWhileTheToolRuns) {
    box::setFault("iw", "slow 3");
    std::thread refresh([this] { provider_.updateValues(); });
    EXPECT_TRUE(box::waitForCalls("iw"));
    const bool isFree = pthread_mutex_trylock(storage_.getStorageMutex().native()) == 0;
    EXPECT_TRUE(isFree);
    if (isFree) {
        EXPECT_TRUE(storage_.listAddresses().empty());
        storage_.getStorageMutex().unlock();
    }
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
