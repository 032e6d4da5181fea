#include "providers/NetworkText.h"
#include "stb/src/common/Text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
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

/// Name, address, frequency, signal and bit rate.
std::string shown(const Interface::WiFiStatus& status) {
    return status.ssid + "|" + status.bssid + "|" + std::to_string(status.frequency) + "|" +
           std::to_string(status.signal) + "|" + std::to_string(status.bitRate);
}

using Rows = std::vector<std::pair<std::string, std::string>>;

TEST(WiFiConfigTest, ReadsItsThreeKeys) {
    const auto config = configOf(
        "wifi_ssid=Kelm Home\n"
        "wifi_wpa_passphrase=correct horse=battery\n"
        "wifi_wep_passphrase=0123456789\n");
    EXPECT_EQ(config.ssid, "Kelm Home");
    EXPECT_EQ(config.wpaPassphrase, "correct horse=battery");
    EXPECT_EQ(config.wepPassphrase, "0123456789");
}

TEST(WiFiConfigTest, AMissingKeyLeavesAnEmptyText) {
    const auto config = configOf("wifi_ssid=only\nwifi_channel=11\n");
    EXPECT_EQ(config.wpaPassphrase + config.wepPassphrase, "");
}

// The last line with the key and an equals sign counts, with everything behind the sign.
TEST(WiFiConfigTest, TheNameIsWhatStandsBehindTheEqualsSign) {
    const Rows rows = {
        {"", ""},
        {" \tWIFI_SSID \t=Home\n", "Home"},
        {"wifi_ssid=Home", "Home"},
        {"wifi_ssid= two  words \t\n", " two  words \t"},
        {"wifi_ssid \t= \n", " "},
        {"wifi_ssid==\r\n", "=\r"},
        {"wifi_ssid=\"Home\"\n", "\"Home\""},
        {"wifi_ssid='Home\n", "'Home"},
        {"wifi_ssid=a#b #c\n", "a#b #c"},
        {"wifi_ssid=Home\n#wifi_ssid=Old\n # wifi_ssid=Older\n", "Home"},
        {"\nwifi_ssid\nwifi_ssid: Home\n   \n", ""},
        {"wifi_ssid=Home\nwifi_ssid\n", "Home"},
        {"wifi_ssid=first\nwifi_ssid=second\n", "second"},
        {"wifi_ssid=first\nwifi_ssid=\n", ""},
        {"wifi_ssid=\xff\xfe\x01\n", "\xff\xfe\x01"},
        {"wifi_ssid=a\0b\n"s, "a\0b"s},
    };
    for (const auto& [file, name] : rows) EXPECT_EQ(configOf(file).ssid, name) << file;
}

TEST(WiFiStatusTest, ReadsALink) {
    EXPECT_EQ(shown(statusOf("Connected to 9c:3d:cf:12:ab:ef (on wlan0)\n"
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
                             "\tbeacon int:\t100\n")),
              "Kelm Home|9C:3D:CF:12:AB:EF|5180|-45|780");
}

TEST(WiFiStatusTest, WhatIsNotALinkIsEmptyAndZero) {
    for (const std::string& output :
         {"Not connected.\n"s, ""s, "\xff\xfe\x01\0\xc3(\x80kB\r\n\0=\xed\xa0\x80: \n:\n::\n"s,
          "\tfreq: high\n\ttx bitrate: (unknown)\n"s, "\trx bitrate: 866.7 MBit/s\n"s,
          "\tfreq: -5180\n\ttx bitrate: -1.0 MBit/s\n"s})
        EXPECT_EQ(shown(statusOf(output)), "||0|0|0") << output;
    EXPECT_EQ(statusOf("\tsignal: -99999999999999999999 dBm\n").signal, 0);
}

TEST(WiFiStatusTest, FractionsAreCutOffAndTheFirstNumberCounts) {
    const Rows rows = {
        {"\tfreq: 5180.0\n", "||5180|0|0"},     {"\ttx bitrate: 866.7 MBit/s\n", "||0|0|866"},
        {"\tsignal: -45.9 dBm\n", "||0|-45|0"}, {"\tsignal: -67 [-70, -71] dBm\n", "||0|-67|0"},
        {"\tsignal: 3 dBm\n", "||0|3|0"},
    };
    for (const auto& [line, figures] : rows) EXPECT_EQ(shown(statusOf(line)), figures);
}

TEST(WiFiStatusTest, ANetworkMayHaveAnyNameAndItMayLookLikeAnotherLine) {
    const Rows rows = {
        {" Home: the second: one", "Home: the second: one"},
        {" SSID: nested", "SSID: nested"},
        {"   two before, three after   ", "  two before, three after   "},
        {"  ", " "},
        {R"( \x00\x00caf\xc3\xa9\x20)", R"(\x00\x00caf\xc3\xa9\x20)"},
        {" signal: -1 dBm", "signal: -1 dBm"},
        {" Not connected.", "Not connected."},
        {" 00:11:22:33:44:55", "00:11:22:33:44:55"},
        {" ", ""},
        {"", ""},
    };
    for (const auto& [printed, name] : rows)
        EXPECT_EQ(shown(statusOf("Connected to 9c:3d:cf:12:ab:ef (on wlan0)\n\tSSID:" + printed +
                                 "\n\tsignal: -45 dBm\n")),
                  name + "|9C:3D:CF:12:AB:EF|0|-45|0");
}

TEST(WiFiStatusTest, AnAddressMayLackItsColonsAndALineItsLineFeed) {
    EXPECT_EQ(statusOf("Connected to 9c3dcf12abef (on wlan0)\n").bssid, "9C3DCF12ABEF");
    EXPECT_EQ(TR::NetworkText::wiFiStatus({"\tSSID: Home", "\tfreq: 2412"}).ssid, "Home");
}

}  // namespace
