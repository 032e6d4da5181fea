#include "providers/FrontEndDataProvider.h"
#include "tests/support/Box.h"
#include "tests/support/GroupMember.h"
#include "tests/support/StoreTest.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using TR::Address;
using TR::Value;
using Names = std::set<std::string>;

const std::string kPrefix = "Device.Services.STBService.1.Components.FrontEnd.1.IP.IGMP.";

/// Puts a command in the box's place that prints this and nothing else.
void can(const std::string& command, const std::string& output) {
    const std::string program = "/usr/bin/" + command;
    box::writeFile("/tmp/canned." + command, output);
    std::filesystem::remove(program);
    box::writeFile(program, "#!/bin/sh\nexec cat /tmp/canned." + command + "\n");
    std::filesystem::permissions(program, std::filesystem::perms(0755));
}

class FrontEndDataProviderTest : public StoreTest {
  protected:
    Value igmp(const std::string& name) const { return value(kPrefix + name); }
    std::string text(const std::string& name) const { return igmp(name).toString(); }
    /// Below the object that every refresh publishes.
    Names names() const {
        Names found = below(kPrefix);
        found.erase("");
        return found;
    }

    TR::FrontEndDataProvider provider_{&storage_};
};

TEST_F(FrontEndDataProviderTest, InitPublishesTheDefaultsAndTheKernelsSettings) {
    can("sysctl",
        "net.ipv4.conf.default.force_igmp_version = 2\nnet.ipv4.igmp_max_memberships = "
        "20\nnet.ipv4.ip_forward = 1\n");
    provider_.init();
    EXPECT_EQ(storage_.listAddresses().size(), 11u);
    EXPECT_EQ(igmp("Enable"), Value(1));
    EXPECT_EQ(igmp("Status"), Value(std::string("Enabled")));
    EXPECT_EQ(igmp("MaximumNumberOfConcurrentGroups"), Value(20));
    for (const char* zero : {"MaximumNumberOfTrackedGroups", "LoggingEnable", "DSCPMark",
                             "ClientGroupNumberOfEntries", "ClientGroupStatsNumberOfEntries"})
        EXPECT_EQ(igmp(zero), Value(0LL)) << zero;
    EXPECT_EQ(igmp("VLANIDMark"), Value(-1));
    EXPECT_EQ(igmp("EthernetPriorityMark"), Value(-1));
    EXPECT_EQ(igmp("ClientVersion"), Value(std::string("v2")));
}

TEST_F(FrontEndDataProviderTest, TheBoxsOwnSysctlIsUnderstood) {
    provider_.init();
    const std::string limit = box::readFile("/proc/sys/net/ipv4/igmp_max_memberships");
    const std::string version = box::readFile("/proc/sys/net/ipv4/conf/default/force_igmp_version");
    EXPECT_EQ(text("MaximumNumberOfConcurrentGroups") + "\n", limit);
    EXPECT_EQ(text("ClientVersion") + "\n", "v" + version);
    EXPECT_EQ(box::calls("sysctl"), std::vector<std::string>{"sysctl -a"});
}

TEST_F(FrontEndDataProviderTest, WithoutTheKernelsSettingsTheDefaultsShow) {
    for (const char* fault : {"silent", "exit 1", "garbage"}) {
        box::setFault("sysctl", fault);
        provider_.init();
        EXPECT_EQ(text("MaximumNumberOfConcurrentGroups"), "0") << fault;
        EXPECT_EQ(text("ClientVersion"), "v0") << fault;
    }
}

TEST_F(FrontEndDataProviderTest, AStoreBeforeInitCreatesTheCount) {
    EXPECT_TRUE(provider_.updateValues());
    EXPECT_EQ(igmp("ClientGroupNumberOfEntries"), Value(0LL));
    EXPECT_EQ(names(), Names{"ClientGroupNumberOfEntries"});
}

TEST_F(FrontEndDataProviderTest, AJoinedGroupShowsAndGoesWithItsSocket) {
    provider_.init();
    const Names before = names();
    {
        const GroupMember member("239.255.0.1", 1234);
        provider_.updateValues();
        EXPECT_EQ(igmp("ClientGroup.1.GroupAddress"), Value(std::string("239.255.0.1")));
        EXPECT_EQ(igmp("ClientGroup.1.UpTime").getType(), Value::Type::Integer);
        EXPECT_EQ(text("ClientGroupNumberOfEntries"), "1");
    }
    provider_.updateValues();
    EXPECT_EQ(names(), before);
    EXPECT_EQ(text("ClientGroupNumberOfEntries"), "0");
    EXPECT_EQ(box::calls("netstat"), (std::vector<std::string>{"netstat -aun", "netstat -aun"}));
}

TEST_F(FrontEndDataProviderTest, OfTwoGroupsTheLastInTextOrderShowsBesideACountOfBoth) {
    const GroupMember ten("239.0.0.10", 5000);
    const GroupMember two("239.0.0.2", 5000);
    provider_.updateValues();
    EXPECT_EQ(text("ClientGroupNumberOfEntries"), "2");
    EXPECT_EQ(text("ClientGroup.1.GroupAddress"), "239.0.0.2");
    EXPECT_EQ(names(), (Names{"ClientGroupNumberOfEntries", "ClientGroup.1.GroupAddress",
                              "ClientGroup.1.UpTime"}));
}

TEST_F(FrontEndDataProviderTest, AMappedAddressOfAnIpv6SocketCounts) {
    const int player = socket(AF_INET6, SOCK_DGRAM, 0);
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(1234);
    inet_pton(AF_INET6, "::ffff:239.255.0.9", &address.sin6_addr);
    ASSERT_EQ(bind(player, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    provider_.updateValues();
    close(player);
    EXPECT_EQ(text("ClientGroup.1.GroupAddress"), "239.255.0.9");
}

TEST_F(FrontEndDataProviderTest, WhenNetstatPrintsNothingUsableTheGroupsAreGone) {
    const GroupMember member("239.255.0.1", 1234);
    for (const char* fault : {"silent", "exit 1", "garbage", "flood"}) {
        provider_.updateValues();
        EXPECT_EQ(text("ClientGroupNumberOfEntries"), "1") << fault;
        box::setFault("netstat", fault);
        EXPECT_TRUE(provider_.updateValues()) << fault;
        EXPECT_EQ(text("ClientGroupNumberOfEntries"), "0") << fault;
        EXPECT_EQ(names(), Names{"ClientGroupNumberOfEntries"}) << fault;
        box::setFault("netstat", "");
    }
}

TEST_F(FrontEndDataProviderTest, RowsOfTheOldCountAreTakenAway) {
    for (const char* name : {"ClientGroupNumberOfEntries", "ClientGroup.2.GroupAddress",
                             "ClientGroup.2.UpTime", "ClientGroup.3.UpTime"})
        storage_.set(Address(kPrefix + name), Value(2));
    provider_.updateValues();
    EXPECT_EQ(names(), (Names{"ClientGroupNumberOfEntries", "ClientGroup.3.UpTime"}));
}

TEST_F(FrontEndDataProviderTest, UpTimeGrowsWhileTheGroupStays) {
    const GroupMember member("239.255.0.1", 1234);
    provider_.updateValues();
    EXPECT_TRUE(box::waitUntil([&] {
        provider_.updateValues();
        return igmp("ClientGroup.1.UpTime").getInt64() >= 2;
    }));
}

TEST_F(FrontEndDataProviderTest, ZappingRecordsNoChange) {
    provider_.init();
    provider_.updateValues();
    storage_.clearUpdates();
    const GroupMember member("239.255.0.1", 1234);
    provider_.updateValues();
    EXPECT_EQ(text("ClientGroupNumberOfEntries"), "1");
    EXPECT_TRUE(storage_.updates().empty());
}

TEST_F(FrontEndDataProviderTest, TheStoreMutexIsFreeWhileACommandRuns) {
    box::setFault("netstat", "slow 2");
    std::thread refresh([&] { provider_.updateValues(); });
    EXPECT_TRUE(box::waitForCalls("netstat"));
    EXPECT_TRUE(isStoreFree());
    refresh.join();
    box::setFault("sysctl", "slow 2");
    std::thread start([&] { provider_.init(); });
    EXPECT_TRUE(box::waitForCalls("sysctl"));
    EXPECT_TRUE(isStoreFree());
    start.join();
}

}  // namespace
