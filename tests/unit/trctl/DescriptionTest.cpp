#include "trctl/Description.h"
#include "trctl/Watched.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace trctl;

std::string meaningOf(const std::string& address) {
    const auto description = descriptionOf(address);
    return description ? description->meaning : "(none)";
}

TEST(DescriptionTest, AnyInstanceIsDescribed) {
    for (const char* number : {"1", "12"}) {
        const std::string interface = std::string("Device.IP.Interface.") + number + '.';
        EXPECT_EQ(meaningOf(interface), "an interface");
        EXPECT_EQ(meaningOf(interface + "Stats."), "counters of the interface");
        const auto sent = descriptionOf(interface + "Stats.BytesSent");
        ASSERT_TRUE(sent.has_value());
        EXPECT_EQ(sent->unit, "bytes");
        EXPECT_EQ(sent->source, "kernel, link-layer counters");
        EXPECT_EQ(sent->meaning, "with the headers of the link");
    }
}

TEST(DescriptionTest, EachPrefixOfATableCounts) {
    EXPECT_EQ(meaningOf("Device.Ethernet.Interface.2.Stats.BytesSent"),
              meaningOf("Device.IP.Interface.2.Stats.BytesSent"));
}

TEST(DescriptionTest, ASemicolonInAMeaningStays) {
    EXPECT_EQ(meaningOf("Device.Services.STBService.1.X_Kelm.WiFiStatus.Signal"),
              "negative; nearer to 0 is stronger");
}

TEST(DescriptionTest, MarksOfTheDocumentAreLeftOut) {
    EXPECT_EQ(descriptionOf("Device.DeviceInfo.MemoryStatus.Free")->source,
              "file /proc/meminfo, MemFree");
}

TEST(DescriptionTest, AnAddressThatTheDocumentDoesNotHaveHasNone) {
    for (const char* address :
         {"", ".", "Device", "Device.Nope", "Device.IP.Interface..", "Device.IP.Interface.x.",
          "Device.IP.Interface.1", "Device.DeviceInfo.UpTime.", "Device.IP.Interface.1.Stats.1"})
        EXPECT_FALSE(descriptionOf(address).has_value()) << address;
}

using Rows = std::vector<std::string>;
const std::string kRow = R"({ "parameter": "A", "value": "1", "notification": "2" })";

TEST(WatchedTest, ARowOfTheClientsFileIsAWatchedParameter) {
    const Watched watched(
        {kRow, R"({ "parameter": "B", "value": "", "notification": "1", "type": "xsd:string" })",
         R"({ "parameter": "C", "value": "", "notification": "0" })"
         "\n"});
    EXPECT_EQ(watched.has("A"), true);
    EXPECT_EQ(watched.has("B"), true);
    EXPECT_EQ(watched.has("C"), false);
    EXPECT_EQ(watched.has("D"), false);
    EXPECT_EQ(Watched(Rows{}).has("A"), false);
}

TEST(WatchedTest, AnUnreadableRowLeavesTheOthersUnknown) {
    for (const char* row : {"{", "[]", R"({ "parameter": "B" })", "\xff"}) {
        const Watched watched({kRow, row});
        EXPECT_EQ(watched.has("A"), true) << row;
        EXPECT_EQ(watched.has("B"), std::nullopt) << row;
    }
}

}  // namespace
