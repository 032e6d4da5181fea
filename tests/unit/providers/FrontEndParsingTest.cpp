#include "providers/FrontEndParsing.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;
using Addresses = std::set<std::string>;

const std::string kVersionKey = "net.ipv4.conf.default.force_igmp_version";
const std::string kMembershipsKey = "net.ipv4.igmp_max_memberships";

std::uint32_t memberships(const std::string& afterKey) {
    return TR::Igmp::kernelSettings({kMembershipsKey + " = 20\n", kMembershipsKey + afterKey})
        .maximumMemberships;
}

TEST(KernelSettingsTest, BothNumbersAreReadFromTheKernelsLines) {
    const auto settings = TR::Igmp::kernelSettings(
        {"net.ipv4.conf.all.force_igmp_version = 7\n", kVersionKey + " = 2\n",
         "net.ipv4.conf.eth0.force_igmp_version = 3\n", kMembershipsKey + " = 20\n",
         "net.ipv4.igmp_max_msf = 10\n"});
    EXPECT_EQ(settings.forcedVersion, 2u);
    EXPECT_EQ(settings.maximumMemberships, 20u);
}

TEST(KernelSettingsTest, WithoutTheKeysBothAreZero) {
    for (const Lines& lines : {Lines{}, Lines{"net.ipv4.igmp_qrv = 2\n", "\n", "= = 3"}}) {
        const auto settings = TR::Igmp::kernelSettings(lines);
        EXPECT_EQ(settings.forcedVersion, 0u);
        EXPECT_EQ(settings.maximumMemberships, 0u);
    }
}

TEST(KernelSettingsTest, AKeyCountsWhereverItStandsInTheLine) {
    EXPECT_EQ(TR::Igmp::kernelSettings({"sysctl: " + kVersionKey + "=3"}).forcedVersion, 3u);
}

TEST(KernelSettingsTest, ALineWithBothKeysIsTheVersions) {
    const auto settings = TR::Igmp::kernelSettings({kMembershipsKey + " " + kVersionKey + " = 3"});
    EXPECT_EQ(settings.forcedVersion, 3u);
    EXPECT_EQ(settings.maximumMemberships, 0u);
}

TEST(KernelSettingsTest, TheLastOfARepeatedKeyWins) {
    EXPECT_EQ(memberships(" = 30\n"), 30u);
}

TEST(KernelSettingsTest, ALineWithoutASecondFieldLeavesTheValue) {
    for (const char* rest : {"\n", " 30\n", " =", "==="}) EXPECT_EQ(memberships(rest), 20u) << rest;
}

TEST(KernelSettingsTest, ABlankSecondFieldLeavesTheValue) {
    for (const char* rest : {" = \n", "= \t", " = =30"}) EXPECT_EQ(memberships(rest), 20u) << rest;
}

TEST(KernelSettingsTest, ARunOfEqualsSignsSeparatesOnce) {
    EXPECT_EQ(memberships(" === 30"), 30u);
    EXPECT_EQ(TR::Igmp::kernelSettings({"==" + kMembershipsKey + "=30=40"}).maximumMemberships,
              30u);
}

TEST(KernelSettingsTest, ASecondFieldWithoutANumberReadsAsZero) {
    EXPECT_EQ(memberships(" = many\n"), 0u);
}

TEST(KernelSettingsTest, WhatFollowsTheNumberIsIgnored) {
    EXPECT_EQ(memberships(" = 30 groups\n"), 30u);
}

TEST(KernelSettingsTest, ANumberThatIsTooBigReadsAsTheBiggest) {
    EXPECT_EQ(memberships(" = 99999999999999999999\n"), std::numeric_limits<std::uint32_t>::max());
}

TEST(KernelSettingsTest, InvalidUtf8DoesNoHarm) {
    EXPECT_EQ(memberships(std::string(" = \xff\xfe\0 30", 8)), 0u);
    EXPECT_EQ(TR::Igmp::kernelSettings({std::string("\0\xff=\x80", 4)}).maximumMemberships, 0u);
}

std::string udp(const std::string& local) {
    return "udp        0      0 " + local + "     0.0.0.0:*                           \n";
}

TEST(GroupAddressesTest, ASocketBoundToAGroupAddsIt) {
    EXPECT_EQ(TR::Igmp::groupAddresses({udp("239.255.0.1:1234")}), Addresses{"239.255.0.1"});
}

TEST(GroupAddressesTest, TwoSocketsOnOneAddressMakeOneGroup) {
    EXPECT_EQ(TR::Igmp::groupAddresses({udp("239.255.0.1:1234"), udp("239.255.0.1:1235")}),
              Addresses{"239.255.0.1"});
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

TEST(GroupAddressesTest, ATcpLineIsIgnored) {
    EXPECT_EQ(TR::Igmp::groupAddresses({"tcp        0      0 239.255.0.1:80      0.0.0.0:*\n"}),
              Addresses{});
}

TEST(GroupAddressesTest, AMappedAddressInALineOfAnIpv6SocketCounts) {
    EXPECT_EQ(TR::Igmp::groupAddresses({"udp6       0      0 ::ffff:239.255.0.1:1234  :::*\n"}),
              Addresses{"239.255.0.1"});
}

TEST(GroupAddressesTest, TheFirstGroupOfALineCounts) {
    EXPECT_EQ(TR::Igmp::groupAddresses({"udp 0 0 192.168.1.20:99 239.0.0.2:1234 239.0.0.3:1 \n"}),
              Addresses{"239.0.0.2"});
}

TEST(GroupAddressesTest, AnAddressWithoutItsFourOctetsIsIgnored) {
    for (const char* broken : {"239.255.0:1234", "239", "239.255.0.:1234", "239,255,0,1:1234"})
        EXPECT_EQ(TR::Igmp::groupAddresses({udp(broken)}), Addresses{}) << broken;
}

TEST(GroupAddressesTest, HeadingsEmptyLinesAndGarbageAddNothing) {
    EXPECT_EQ(TR::Igmp::groupAddresses({}), Addresses{});
    EXPECT_EQ(TR::Igmp::groupAddresses(
                  {"Active Internet connections (servers and established)\n",
                   "Proto Recv-Q Send-Q Local Address           Foreign Address         State\n",
                   "", "\n", "udp", std::string("\xff\xfe\0udp\x80", 7), std::string(100000, 'u')}),
              Addresses{});
}

}  // namespace
