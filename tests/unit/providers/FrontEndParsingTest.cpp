#include "providers/FrontEndParsing.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

using Lines = std::vector<std::string>;
using Addresses = std::set<std::string>;

const std::string kVersionKey = "net.ipv4.conf.default.force_igmp_version";
const std::string kMembershipsKey = "net.ipv4.igmp_max_memberships";

TEST(KernelSettingsTest, BothNumbersAreReadFromTheKernelsLines) {
    const struct {
        Lines lines;
        std::uint32_t version, memberships;
    } rows[] = {
        {{"net.ipv4.conf.all.force_igmp_version = 7\n", kVersionKey + " = 2\n",
          "net.ipv4.conf.eth0.force_igmp_version = 3\n", kMembershipsKey + " = 20\n",
          "net.ipv4.igmp_max_msf = 10\n"},
         2,
         20},
        {{}, 0, 0},
        {{"net.ipv4.igmp_qrv = 2\n", "\n", "= = 3", std::string("\0\xff=\x80", 4)}, 0, 0},
        {{"sysctl: " + kVersionKey + "=3"}, 3, 0},  // wherever the key stands
        {{kMembershipsKey + " " + kVersionKey + " = 3"},
         3,
         0},  // a line with both is the version's
        {{"==" + kMembershipsKey + "=30=40"}, 0, 30},
    };
    for (const auto& [lines, version, memberships] : rows) {
        const auto settings = TR::Igmp::kernelSettings(lines);
        EXPECT_EQ(settings.forcedVersion, version) << ::testing::PrintToString(lines);
        EXPECT_EQ(settings.maximumMemberships, memberships) << ::testing::PrintToString(lines);
    }
}

// Of a key that is repeated the last line with a second field counts.
TEST(KernelSettingsTest, TheSecondFieldIsTheNumber) {
    const std::pair<std::string, std::uint32_t> rows[] = {
        {" = 30\n", 30},
        {" === 30", 30},
        {" = 30 groups\n", 30},
        {" = many\n", 0},
        {std::string(" = \xff\xfe\0 30", 8), 0},
        {" = 99999999999999999999\n", std::numeric_limits<std::uint32_t>::max()},
        {"\n", 20},
        {" 30\n", 20},
        {" =", 20},
        {"===", 20},
        {" = \n", 20},
        {"= \t", 20},
        {" = =30", 20},
    };
    for (const auto& [rest, number] : rows)
        EXPECT_EQ(TR::Igmp::kernelSettings({kMembershipsKey + " = 20\n", kMembershipsKey + rest})
                      .maximumMemberships,
                  number)
            << rest;
}

std::string udp(const std::string& local) {
    return "udp        0      0 " + local + "     0.0.0.0:*                           \n";
}

TEST(GroupAddressesTest, TheRangeIsThatOfTheMulticastAddresses) {
    for (const char* group : {"224.0.0.1", "224.0.0.0", "239.255.255.250", "239.255.255.255",
                              "229.1.9.10", "230.99.100.199", "232.200.249.250"})
        EXPECT_EQ(TR::Igmp::groupAddresses({udp(std::string(group) + ":1")}), Addresses{group});
    for (const char* other : {"223.255.255.255", "240.0.0.1", "192.168.1.20", "0.0.0.0"})
        EXPECT_EQ(TR::Igmp::groupAddresses({udp(std::string(other) + ":1")}), Addresses{}) << other;
}

TEST(GroupAddressesTest, EveryOctetIsMatchedInAllItsValues) {
    for (int octet = 0; octet < 256; ++octet) {
        const std::string number = std::to_string(octet);
        const std::string group = "239." + number + "." + number + "." + number;
        EXPECT_EQ(TR::Igmp::groupAddresses({udp(group + ":5000")}), Addresses{group});
    }
}

TEST(GroupAddressesTest, EachUdpLineAddsItsFirstGroup) {
    const std::pair<Lines, Addresses> rows[] = {
        {{udp("239.255.0.1:1234"), udp("239.255.0.1:1235")}, {"239.255.0.1"}},
        {{"tcp        0      0 239.255.0.1:80      0.0.0.0:*\n"}, {}},
        {{"udp6       0      0 ::ffff:239.255.0.1:1234  :::*\n"}, {"239.255.0.1"}},
        {{"udp 0 0 192.168.1.20:99 239.0.0.2:1234 239.0.0.3:1 \n"}, {"239.0.0.2"}},
        {{udp("239.255.0:1234"), udp("239"), udp("239.255.0.:1234"), udp("239,255,0,1:1234")}, {}},
        {{}, {}},
        {{"Active Internet connections (servers and established)\n",
          "Proto Recv-Q Send-Q Local Address           Foreign Address         State\n", "", "\n",
          "udp", std::string("\xff\xfe\0udp\x80", 7), std::string(100000, 'u')},
         {}},
    };
    for (const auto& [lines, groups] : rows)
        EXPECT_EQ(TR::Igmp::groupAddresses(lines), groups) << lines.size();
}

}  // namespace
