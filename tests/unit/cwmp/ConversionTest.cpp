#include "cwmp/Conversion.h"
#include "cwmp/DateTime.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace cwmp;

constexpr char kPassphrase[] =
    "Device.Services.STBService.1.X_Kelm.Config.WiFiConfig.WPAPassphrase";
constexpr char kLog[] = "Device.DeviceInfo.DeviceLog";

std::string sent(Xsd type, const std::string& text) {
    return fromAcs(type, text).value_or("refused");
}

struct TypeCase {
    const char* parameter;
    const char* type;
};

TEST(CwmpTypesTest, EveryInstanceHasTheTypeOfItsTable) {
    for (const TypeCase& row : {
             TypeCase{"Device.DeviceInfo.UpTime", "xsd:unsignedInt"},
             TypeCase{"Device.Ethernet.Interface.1.Enable", "xsd:boolean"},
             TypeCase{"Device.Ethernet.Interface.217.Enable", "xsd:boolean"},
             TypeCase{"Device.Ethernet.Interface.1.Stats.BytesSent", "xsd:unsignedLong"},
             TypeCase{"Device.Ethernet.Interface.x.Enable", "xsd:string"},
             TypeCase{"Device.Ethernet.Interface..Enable", "xsd:string"},
             TypeCase{"Device.Ethernet.Interface.2.MaxBitRate", "xsd:int"},
             TypeCase{"Device.Services.STBService.1.X_Kelm.WiFiStatus.Signal", "xsd:int"},
             TypeCase{"Device.Services.STBService.1.ServiceMonitoring.TimeReference",
                      "xsd:dateTime"},
             TypeCase{"Device.Services.STBService.1.ServiceMonitoring.MainStream.1.Total.Reset",
                      "xsd:boolean"},
             TypeCase{"Device.ManagementServer.PeriodicInformInterval", "xsd:unsignedInt"},
             TypeCase{"Device.DeviceInfo.SerialNumber", "xsd:string"},
             TypeCase{"", "xsd:string"},
         })
        EXPECT_STREQ(xsdName(typeOf(row.parameter)), row.type) << row.parameter;
}

TEST(ConversionTest, WholeNumbersKeepWithinTheirType) {
    EXPECT_EQ(sent(Xsd::Int, "007"), "7");
    EXPECT_EQ(sent(Xsd::Int, "-2147483648"), "-2147483648");
    EXPECT_EQ(sent(Xsd::Int, "-2147483649"), "refused");
    EXPECT_EQ(sent(Xsd::Int, "2147483648"), "refused");
    EXPECT_EQ(sent(Xsd::UnsignedInt, "4294967295"), "4294967295");
    EXPECT_EQ(sent(Xsd::UnsignedInt, "4294967296"), "refused");
    EXPECT_EQ(sent(Xsd::UnsignedInt, "-1"), "refused");
    EXPECT_EQ(sent(Xsd::UnsignedLong, "18446744073709551615"), "18446744073709551615");
    EXPECT_EQ(sent(Xsd::UnsignedLong, "18446744073709551616"), "refused");
    EXPECT_EQ(sent(Xsd::UnsignedInt, "+5"), "5");
    for (const char* text : {"", "5x", "x", "-", "+", " 5", "5 ", "0x5", "5.0", "1e3", "--5"})
        EXPECT_EQ(sent(Xsd::Int, text), "refused") << text;
}

TEST(ConversionTest, BooleansAreTakenInBothForms) {
    EXPECT_EQ(sent(Xsd::Boolean, "true"), "1");
    EXPECT_EQ(sent(Xsd::Boolean, "1"), "1");
    EXPECT_EQ(sent(Xsd::Boolean, "false"), "0");
    EXPECT_EQ(sent(Xsd::Boolean, "0"), "0");
    for (const char* text : {"", "2", "TRUE", "yes", "00", "1 "})
        EXPECT_EQ(sent(Xsd::Boolean, text), "refused") << text;
}

TEST(ConversionTest, TimesAreTranslatedBothWays) {
    EXPECT_EQ(sent(Xsd::DateTime, "2026-11-22T00:00:00Z"), "2026-11-22 00:00:00 UTC");
    EXPECT_EQ(sent(Xsd::DateTime, "2026-01-01T00:30:00.125+01:00"), "2025-12-31 23:30:00 UTC");
    EXPECT_EQ(sent(Xsd::DateTime, "2024-02-28T23:59:59-00:01"), "2024-02-29 00:00:59 UTC");
    EXPECT_EQ(sent(Xsd::DateTime, kUnknownTime), "0001-01-01 00:00:00 UTC");
    EXPECT_EQ(dateTimeToAcs("2026-11-22 00:00:00 UTC"), "2026-11-22T00:00:00Z");
    EXPECT_EQ(dateTimeToAcs("1970-01-01 00:00:00 UTC"), "1970-01-01T00:00:00Z");
    for (const char* text :
         {"", "now", "2026-11-22", "2026-11-22 00:00:00 UTC", "2026-11-22T24:00:00Z",
          "2026-02-29T00:00:00Z", "2026-13-01T00:00:00Z", "2026-11-22T00:00:00Zx",
          "2026-11-22T00:00:00.Z", "2026-11-22T00:00:00+1:00", "026-11-22T00:00:00Z",
          "-2026-11-22T00:00:00Z"})
        EXPECT_EQ(sent(Xsd::DateTime, text), "refused") << text;
}

TEST(ConversionTest, ATextIsTakenWithEveryByteUnlessXmlForbidsOne) {
    const std::string text = " \"a\\b\" $(reboot) `x` 'y' \n\t\xE7\x94\xB5 ";
    EXPECT_EQ(sent(Xsd::String, text), text);
    EXPECT_EQ(sent(Xsd::String, "\x1b"), "refused");
    EXPECT_EQ(sent(Xsd::String, std::string("a\0b", 3)), "refused");
}

TEST(ConversionTest, WhatTheBoxSaysFitsItsType) {
    const auto shown = [](const char* parameter, const std::string& text) {
        const Seen seen = toAcs(parameter, text);
        return seen.value + ' ' + xsdName(seen.type);
    };
    EXPECT_EQ(shown("Device.DeviceInfo.UpTime", "2852"), "2852 xsd:unsignedInt");
    EXPECT_EQ(shown("Device.DeviceInfo.UpTime", "-1"), "0 xsd:unsignedInt");
    EXPECT_EQ(shown("Device.DeviceInfo.UpTime", "5000000000"), "4294967295 xsd:unsignedInt");
    EXPECT_EQ(shown("Device.Ethernet.Interface.1.MaxBitRate", "-1"), "-1 xsd:int");
    EXPECT_EQ(shown("Device.Ethernet.Interface.1.MaxBitRate", "-9999999999"),
              "-2147483648 xsd:int");
    EXPECT_EQ(shown("Device.Services.STBService.1.Capabilities.AudioOutput.1.CancelMute", "false"),
              "0 xsd:boolean");
    EXPECT_EQ(shown("Device.Services.STBService.1.ServiceMonitoring.ReportEndTime",
                    "1970-01-01 00:00:00 UTC"),
              "1970-01-01T00:00:00Z xsd:dateTime");
    EXPECT_EQ(shown("Device.ManagementServer.PeriodicInformTime", ""),
              std::string(kUnknownTime) + " xsd:dateTime");
    EXPECT_EQ(shown("Device.DeviceInfo.UpTime", ""), " xsd:string");
    EXPECT_EQ(shown("Device.DeviceInfo.UpTime", "soon"), "soon xsd:string");
    EXPECT_EQ(shown("Device.DeviceInfo.ModelName", "a\x01"), "a\xEF\xBF\xBD xsd:string");
}

TEST(ConversionTest, SecretsReadAsEmpty) {
    EXPECT_EQ(toAcs(kPassphrase, "correct horse=battery").value, "");
    EXPECT_EQ(toAcs("Device.ManagementServer.ConnectionRequestPassword", "secret").value, "");
    EXPECT_EQ(toAcs("Device.ManagementServer.Username", "name").value, "name");
}

TEST(ConversionTest, OfTheLogTheLast32KiBOfWholeLinesAreShown) {
    std::string log;
    for (int line = 0; line < 5000; ++line) log += "line " + std::to_string(line) + R"( \"x\"\n)";
    const std::string shown = toAcs(kLog, log).value;
    EXPECT_LE(shown.size(), kLongestLog);
    EXPECT_GT(shown.size(), kLongestLog - 30);
    EXPECT_EQ(shown.substr(0, 5), "line ");
    EXPECT_EQ(shown.substr(shown.size() - 14), "line 4999 \"x\"\n");
    EXPECT_EQ(toAcs(kLog, R"(caf\u00c3\u00a9 \u001b\\n)").value, "caf\xC3\xA9 \xEF\xBF\xBD\\n");
}

TEST(ConversionTest, AnyOtherValueAbove64KiBIsCutBetweenTwoCharacters) {
    std::string text;
    while (text.size() <= kLongestValue + 5) text += "\xE7\x94\xB5";
    testing::internal::CaptureStderr();
    const std::string shown = toAcs("Device.DeviceInfo.ModelName", text).value;
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Device.DeviceInfo.ModelName is cut"),
              std::string::npos);
    EXPECT_EQ(shown.size(), kLongestValue - kLongestValue % 3);
    EXPECT_EQ(toAcs("Device.DeviceInfo.ModelName", std::string(kLongestValue, 'x')).value.size(),
              kLongestValue);
}

TEST(ConversionTest, ValuesAreComparedByTheirType) {
    EXPECT_TRUE(isSameValue(Xsd::Int, "007", "7"));
    EXPECT_FALSE(isSameValue(Xsd::String, "007", "7"));
    EXPECT_TRUE(isSameValue(Xsd::Boolean, "true", "1"));
    EXPECT_FALSE(isSameValue(Xsd::Boolean, "1", "0"));
    EXPECT_FALSE(isSameValue(Xsd::Int, "x", "y"));
    EXPECT_TRUE(isSameValue(Xsd::DateTime, "2026-11-22 00:00:00 UTC", "2026-11-22T01:00:00+01:00"));
    EXPECT_TRUE(isSameValue(Xsd::String, " a\n", " a\n"));
    EXPECT_FALSE(isSameValue(Xsd::String, "a\n", "a"));
}

}  // namespace
