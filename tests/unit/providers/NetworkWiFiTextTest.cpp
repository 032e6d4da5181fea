#include "providers/NetworkText.h"
#include "stb/src/common/Text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Interface = TR::NetworkDataProvider::Interface;
using TR::Utils::LineFeeds;
using TR::Utils::splitLines;
using namespace std::string_literals;

Interface::WiFiConfig configOf(const std::string& file) {
    return TR::NetworkText::wiFiConfig(splitLines(file, LineFeeds::Drop));
}

Interface::WiFiStatus statusOf(const std::string& output) {
    return TR::NetworkText::wiFiStatus(splitLines(output, LineFeeds::Keep));
}

std::string ssidOf(const std::string& line) {
    return statusOf("Connected to 9c:3d:cf:12:ab:ef (on wlan0)\n" + line + "\n\tfreq: 5180\n").ssid;
}

void expectNoLink(const Interface::WiFiStatus& status) {
    EXPECT_EQ(status.ssid, "");
    EXPECT_EQ(status.bssid, "");
    EXPECT_EQ(status.frequency, 0);
    EXPECT_EQ(status.signal, 0);
    EXPECT_EQ(status.bitRate, 0);
}

TEST(WiFiConfigTest, ReadsItsThreeKeys) {
    const auto config = configOf(
        "wifi_ssid=Kelm Home\n"
        "wifi_wpa_passphrase=correct horse=battery\n"
        "wifi_wep_passphrase=0123456789\n");
    EXPECT_EQ(config.ssid, "Kelm Home");
    EXPECT_EQ(config.wpaPassphrase, "correct horse=battery");
    EXPECT_EQ(config.wepPassphrase, "0123456789");
}

TEST(WiFiConfigTest, AMissingFileOrKeyLeavesEmptyTexts) {
    EXPECT_EQ(configOf("").ssid, "");
    const auto config = configOf("wifi_ssid=only\nwifi_channel=11\n");
    EXPECT_EQ(config.wpaPassphrase, "");
    EXPECT_EQ(config.wepPassphrase, "");
}

TEST(WiFiConfigTest, KeysCountInAnyCaseAndWithWhiteSpaceRoundThem) {
    EXPECT_EQ(configOf(" \tWIFI_SSID \t=Home\n").ssid, "Home");
}

TEST(WiFiConfigTest, TheValueIsEverythingBehindTheEqualsSign) {
    EXPECT_EQ(configOf("wifi_wpa_passphrase= two  words \t\n").wpaPassphrase, " two  words \t");
    EXPECT_EQ(configOf("wifi_wpa_passphrase \t= \n").wpaPassphrase, " ");
    EXPECT_EQ(configOf("wifi_wep_passphrase==\r\n").wepPassphrase, "=\r");
}

TEST(WiFiConfigTest, QuotesStayAsTheyAre) {
    EXPECT_EQ(configOf("wifi_ssid=\"Home\"\n").ssid, "\"Home\"");
    EXPECT_EQ(configOf("wifi_ssid='Home\n").ssid, "'Home");
}

TEST(WiFiConfigTest, CommentsAreSkipped) {
    EXPECT_EQ(configOf("wifi_ssid=Home\n#wifi_ssid=Old\n # wifi_ssid=Older\n").ssid, "Home");
}

TEST(WiFiConfigTest, AHashInsideAValueStays) {
    EXPECT_EQ(configOf("wifi_wpa_passphrase=a#b #c\n").wpaPassphrase, "a#b #c");
}

TEST(WiFiConfigTest, LinesWithoutAnEqualsSignAreSkipped) {
    EXPECT_EQ(configOf("\nwifi_ssid\nwifi_ssid: Home\n   \n").ssid, "");
    EXPECT_EQ(configOf("wifi_ssid=Home\nwifi_ssid\n").ssid, "Home");
}

TEST(WiFiConfigTest, TheLastOfARepeatedKeyWins) {
    EXPECT_EQ(configOf("wifi_ssid=first\nwifi_ssid=second\n").ssid, "second");
    EXPECT_EQ(configOf("wifi_ssid=first\nwifi_ssid=\n").ssid, "");
}

TEST(WiFiConfigTest, ALastLineWithoutALineFeedCounts) {
    EXPECT_EQ(configOf("wifi_ssid=Home").ssid, "Home");
}

TEST(WiFiConfigTest, AnyBytesMayStandInAValue) {
    EXPECT_EQ(configOf("wifi_ssid=\xff\xfe\x01\n").ssid, "\xff\xfe\x01");
    EXPECT_EQ(configOf("wifi_ssid=a\0b\n"s).ssid, "a\0b"s);
}

TEST(WiFiStatusTest, ReadsALink) {
    const auto status = statusOf(
        "Connected to 9c:3d:cf:12:ab:ef (on wlan0)\n"
        "\tSSID: Kelm Home\n"
        "\tfreq: 5180\n"
        "\tRX: 1873642 bytes (9214 packets)\n"
        "\tTX: 214573 bytes (1398 packets)\n"
        "\tsignal: -45 dBm\n"
        "\trx bitrate: 866.7 MBit/s VHT-MCS 9 80MHz short GI VHT-NSS 2\n"
        "\ttx bitrate: 780.0 MBit/s VHT-MCS 8 80MHz short GI VHT-NSS 2\n"
        "\n"
        "\tbss flags:\tshort-slot-time\n"
        "\tdtim period:\t1\n"
        "\tbeacon int:\t100\n");
    EXPECT_EQ(status.ssid, "Kelm Home");
    EXPECT_EQ(status.bssid, "9C:3D:CF:12:AB:EF");
    EXPECT_EQ(status.frequency, 5180);
    EXPECT_EQ(status.signal, -45);
    EXPECT_EQ(status.bitRate, 780);
}

TEST(WiFiStatusTest, NotConnectedIsEmptyAndZero) {
    expectNoLink(statusOf("Not connected.\n"));
    expectNoLink(statusOf(""));
}

TEST(WiFiStatusTest, FractionsAreCutOff) {
    EXPECT_EQ(statusOf("\tfreq: 5180.0\n").frequency, 5180);
    EXPECT_EQ(statusOf("\ttx bitrate: 866.7 MBit/s\n").bitRate, 866);
    EXPECT_EQ(statusOf("\tsignal: -45.9 dBm\n").signal, -45);
}

TEST(WiFiStatusTest, TheSignalKeepsItsSignAndItsFirstNumberCounts) {
    EXPECT_EQ(statusOf("\tsignal: -67 [-70, -71] dBm\n").signal, -67);
    EXPECT_EQ(statusOf("\tsignal: 3 dBm\n").signal, 3);
}

TEST(WiFiStatusTest, AFrequencyOrBitRateIsNeverNegative) {
    EXPECT_EQ(statusOf("\tfreq: -5180\n").frequency, 0);
    EXPECT_EQ(statusOf("\ttx bitrate: -1.0 MBit/s\n").bitRate, 0);
}

TEST(WiFiStatusTest, AnythingButANumberIsZero) {
    const auto status =
        statusOf("\tfreq: high\n\tsignal: -99999999999999999999 dBm\n\ttx bitrate: (unknown)\n");
    EXPECT_EQ(status.frequency, 0);
    EXPECT_EQ(status.signal, 0);
    EXPECT_EQ(status.bitRate, 0);
}

TEST(WiFiStatusTest, TheReceiveRateIsNotTheBitRate) {
    EXPECT_EQ(statusOf("\trx bitrate: 866.7 MBit/s\n").bitRate, 0);
}

TEST(WiFiStatusTest, AnSsidMayHoldColons) {
    EXPECT_EQ(ssidOf("\tSSID: Home: the second: one"), "Home: the second: one");
    EXPECT_EQ(ssidOf("\tSSID: SSID: nested"), "SSID: nested");
}

TEST(WiFiStatusTest, AnSsidMayHaveBlanksAtItsEnds) {
    EXPECT_EQ(ssidOf("\tSSID:   two before, three after   "), "  two before, three after   ");
    EXPECT_EQ(ssidOf("\tSSID:  "), " ");
}

TEST(WiFiStatusTest, AnSsidKeepsTheToolsEscapes) {
    EXPECT_EQ(ssidOf(R"(	SSID: \x00\x00caf\xc3\xa9\x20)"), R"(\x00\x00caf\xc3\xa9\x20)");
}

TEST(WiFiStatusTest, AnSsidMayLookLikeAnotherLine) {
    const auto status = statusOf("\tSSID: signal: -1 dBm\n\tsignal: -45 dBm\n");
    EXPECT_EQ(status.ssid, "signal: -1 dBm");
    EXPECT_EQ(status.signal, -45);
    EXPECT_EQ(ssidOf("\tSSID: Not connected."), "Not connected.");
}

TEST(WiFiStatusTest, AHiddenNetworkHasAnEmptySsid) {
    EXPECT_EQ(ssidOf("\tSSID: "), "");
    EXPECT_EQ(ssidOf("\tSSID:"), "");
}

TEST(WiFiStatusTest, TheBssidIsTheFirstThatLooksLikeOne) {
    EXPECT_EQ(ssidOf("\tSSID: 00:11:22:33:44:55"), "00:11:22:33:44:55");
    const auto status = statusOf(
        "Connected to 9c:3d:cf:12:ab:ef (on wlan0)\n"
        "\tSSID: 00:11:22:33:44:55\n");
    EXPECT_EQ(status.bssid, "9C:3D:CF:12:AB:EF");
    EXPECT_EQ(statusOf("Connected to 9c3dcf12abef (on wlan0)\n").bssid, "9C3DCF12ABEF");
}

TEST(WiFiStatusTest, GarbageLeavesNoLink) {
    expectNoLink(statusOf("\xff\xfe\x01\0\xc3(\x80kB\r\n\0=\xed\xa0\x80: \n:\n::\n"s));
}

TEST(WiFiStatusTest, LinesMayComeWithoutTheirLineFeeds) {
    EXPECT_EQ(TR::NetworkText::wiFiStatus({"\tSSID: Home", "\tfreq: 2412"}).ssid, "Home");
}

}  // namespace
