#include "dbus/BusLimits.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace BusLimits = TR::BusLimits;

constexpr std::uint64_t kBuiltIn = 32ULL << 20;

std::string limit(const std::string& size) {
    return "<busconfig><limit name=\"max_message_size\">" + size + "</limit></busconfig>";
}

TEST(BusLimitsTest, TheConfiguredMessageSizeIsRead) {
    EXPECT_EQ(BusLimits::configuredMessageSize(limit("1000000000")), 1000000000ULL);
    EXPECT_EQ(BusLimits::configuredMessageSize("<limit name='max_message_size'> 5000\n</limit>"),
              5000ULL);
}

TEST(BusLimitsTest, TheLastOfSeveralCounts) {
    EXPECT_EQ(BusLimits::configuredMessageSize(limit("1000") + limit("2000")), 2000ULL);
}

TEST(BusLimitsTest, WithoutOneTheBuiltInDefaultHolds) {
    EXPECT_EQ(BusLimits::configuredMessageSize("<busconfig/>"), kBuiltIn);
    EXPECT_EQ(BusLimits::configuredMessageSize("<limit name=\"max_incoming_bytes\">7</limit>"),
              kBuiltIn);
}

TEST(BusLimitsTest, CommentsDoNotCount) {
    EXPECT_EQ(BusLimits::configuredMessageSize("<!-- " + limit("1000") + " -->"), kBuiltIn);
    EXPECT_EQ(BusLimits::configuredMessageSize(limit("7") + "<!-- never closed" + limit("1000")),
              7ULL);
}

TEST(BusLimitsTest, AnIncludedFileIsFollowedAndALoopEnds) {
    const std::string file = ::testing::TempDir() + "bus_limits_included.conf";
    std::ofstream(file) << limit("4321") << "<include>" << file << "</include>";
    EXPECT_EQ(
        BusLimits::configuredMessageSize("<include ignore_missing=\"yes\">" + file + "</include>"),
        4321ULL);
    std::remove(file.c_str());
}

TEST(BusLimitsTest, TheCommandLineNamesTheConfiguration) {
    EXPECT_EQ(BusLimits::configurationFile({"dbus-daemon", "--session", "--fork"}),
              "/usr/share/dbus-1/session.conf");
    EXPECT_EQ(BusLimits::configurationFile({"dbus-daemon", "--config-file=/etc/bus.conf"}),
              "/etc/bus.conf");
    EXPECT_EQ(BusLimits::configurationFile({"dbus-daemon", "--config-file", "/etc/bus.conf"}),
              "/etc/bus.conf");
    EXPECT_EQ(BusLimits::configurationFile({"dbus-daemon", "--config-file"}), "");
    EXPECT_EQ(BusLimits::configurationFile({}), "");
}

TEST(BusLimitsTest, AListTakesALengthANulAndAlignmentPerString) {
    const std::uint64_t empty = BusLimits::replyBytes(std::vector<std::string>{});
    EXPECT_EQ(BusLimits::replyBytes(std::vector<std::string>{""}) - empty, 8U);
    EXPECT_EQ(BusLimits::replyBytes(std::vector<std::string>{"abc"}) - empty, 8U);
    EXPECT_EQ(BusLimits::replyBytes(std::vector<std::string>{"abcd"}) - empty, 12U);
    EXPECT_EQ(BusLimits::replyBytes(std::vector<std::string>{"a", "b"}) - empty, 16U);
}

}  // namespace
