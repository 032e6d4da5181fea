#include "model/Storage.h"
#include "providers/FrontEndDataProvider.h"
#include "tests/support/Box.h"
#include "tests/support/GroupMember.h"

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

const std::string kPrefix = "Device.Services.STBService.1.Components.FrontEnd.1.IP.IGMP.";

/// Puts a command in the box's place that prints this and nothing else.
void can(const std::string& command, const std::string& output) {
    const std::string program = "/usr/bin/" + command;
    box::writeFile("/tmp/canned." + command, output);
    std::filesystem::remove(program);
    box::writeFile(program, "#!/bin/sh\nexec cat /tmp/canned." + command + "\n");
    std::filesystem::permissions(program, std::filesystem::perms(0755));
}

class FrontEndDataProviderTest : public ::testing::Test {
  protected:
    Value& at(const std::string& name) { return storage_[Address(kPrefix + name)]; }
    std::string text(const std::string& name) { return at(name).toString(); }
    bool has(const std::string& name) { return storage_.hasAddress(Address(kPrefix + name)); }

    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const Address& address : storage_.listAddresses())
            if (address.get().rfind(kPrefix, 0) == 0 && address.get() != kPrefix)
                found.insert(address.get().substr(kPrefix.size()));
        return found;
    }

    TR::Storage storage_;
    TR::FrontEndDataProvider provider_{&storage_};
};

const std::set<std::string> kInitNames = {"Enable",
                                          "Status",
                                          "MaximumNumberOfConcurrentGroups",
                                          "MaximumNumberOfTrackedGroups",
                                          "LoggingEnable",
                                          "DSCPMark",
                                          "VLANIDMark",
                                          "EthernetPriorityMark",
                                          "ClientVersion",
                                          "ClientGroupNumberOfEntries",
                                          "ClientGroupStatsNumberOfEntries"};

TEST_F(FrontEndDataProviderTest, InitCreatesExactlyItsElevenParameters) {
    provider_.init();
    EXPECT_EQ(names(), kInitNames);
    EXPECT_EQ(storage_.listAddresses().size(), 11u);
}

TEST_F(FrontEndDataProviderTest, InitReadsTheKernelsSettings) {
    can("sysctl",
        "net.ipv4.conf.default.force_igmp_version = 2\nnet.ipv4.igmp_max_memberships = "
        "20\nnet.ipv4.ip_forward = 1\n");
    provider_.init();
    EXPECT_EQ(at("Enable"), Value(1));
    EXPECT_EQ(at("Status"), Value(std::string("Enabled")));
    EXPECT_EQ(at("MaximumNumberOfConcurrentGroups"), Value(20));
    EXPECT_EQ(at("MaximumNumberOfTrackedGroups"), Value(0LL));
    EXPECT_EQ(at("LoggingEnable"), Value(0LL));
    EXPECT_EQ(at("DSCPMark"), Value(0LL));
    EXPECT_EQ(at("VLANIDMark"), Value(-1));
    EXPECT_EQ(at("EthernetPriorityMark"), Value(-1));
    EXPECT_EQ(at("ClientVersion"), Value(std::string("v2")));
    EXPECT_EQ(at("ClientGroupNumberOfEntries"), Value(0LL));
    EXPECT_EQ(at("ClientGroupStatsNumberOfEntries"), Value(0LL));
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
    can("sysctl", "net.ipv4.igmp_qrv = 2\n");
    provider_.init();
    EXPECT_EQ(text("MaximumNumberOfConcurrentGroups"), "0");
    EXPECT_EQ(text("ClientVersion"), "v0");
}

TEST_F(FrontEndDataProviderTest, NoParameterIsWritableForcedOrKeptElsewhere) {
    const GroupMember member("239.255.0.1", 1234);
    provider_.init();
    provider_.updateValues();
    for (const Address& address : storage_.listAddresses()) {
        const Value& value = storage_[address];
        EXPECT_FALSE(value.isMutableByUser()) << address.get();
        EXPECT_FALSE(value.isForcedInform()) << address.get();
        EXPECT_EQ(value.getPathInConfig() + value.filePathToStoreValue(), "") << address.get();
    }
}

TEST_F(FrontEndDataProviderTest, ARefreshAddsTheObjectsAndNoRowWithoutAGroup) {
    provider_.init();
    EXPECT_TRUE(provider_.updateValues());
    EXPECT_EQ(names(), kInitNames);
    const std::string components = "Device.Services.STBService.1.Components.";
    for (const char* object :
         {"", "FrontEnd.", "FrontEnd.1.", "FrontEnd.1.IP.", "FrontEnd.1.IP.IGMP."})
        EXPECT_EQ(storage_[Address(components + object)], Value::Object()) << object;
    EXPECT_EQ(storage_.listAddresses().size(), 11u + 5u);
}

TEST_F(FrontEndDataProviderTest, AStoreBeforeInitCreatesTheCount) {
    EXPECT_TRUE(provider_.updateValues());
    EXPECT_EQ(at("ClientGroupNumberOfEntries"), Value(0LL));
    EXPECT_EQ(names(), std::set<std::string>{"ClientGroupNumberOfEntries"});
}

TEST_F(FrontEndDataProviderTest, AJoinedGroupShowsAndGoesWithItsSocket) {
    provider_.init();
    {
        const GroupMember member("239.255.0.1", 1234);
        provider_.updateValues();
        EXPECT_EQ(at("ClientGroup.1.GroupAddress"), Value(std::string("239.255.0.1")));
        EXPECT_EQ(at("ClientGroup.1.UpTime").getType(), Value::Type::Integer);
        EXPECT_EQ(text("ClientGroupNumberOfEntries"), "1");
    }
    provider_.updateValues();
    EXPECT_EQ(names(), kInitNames);
    EXPECT_EQ(text("ClientGroupNumberOfEntries"), "0");
    EXPECT_EQ(box::calls("netstat"), (std::vector<std::string>{"netstat -aun", "netstat -aun"}));
}

TEST_F(FrontEndDataProviderTest, TwoSocketsInOneGroupAreOneGroup) {
    const GroupMember first("239.255.0.1", 1234);
    const GroupMember second("239.255.0.1", 1235);
    const GroupMember third("239.255.0.1", 1235);
    provider_.updateValues();
    EXPECT_EQ(text("ClientGroupNumberOfEntries"), "1");
}

TEST_F(FrontEndDataProviderTest, OfTwoGroupsTheLastInTextOrderShowsBesideACountOfBoth) {
    const GroupMember ten("239.0.0.10", 5000);
    const GroupMember two("239.0.0.2", 5000);
    provider_.updateValues();
    EXPECT_EQ(text("ClientGroupNumberOfEntries"), "2");
    EXPECT_EQ(text("ClientGroup.1.GroupAddress"), "239.0.0.2");
    EXPECT_FALSE(has("ClientGroup.2.GroupAddress"));
    EXPECT_FALSE(has("ClientGroup.1."));
    EXPECT_FALSE(has("ClientGroup."));
}

TEST_F(FrontEndDataProviderTest, TcpSocketsAndUnicastSocketsAreIgnored) {
    can("netstat",
        "tcp        0      0 239.255.0.9:80          0.0.0.0:*               LISTEN\n"
        "udp        0      0 192.168.1.20:5000       0.0.0.0:*\n");
    provider_.updateValues();
    EXPECT_EQ(text("ClientGroupNumberOfEntries"), "0");
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

TEST_F(FrontEndDataProviderTest, ASocketThatNetstatPrintsAsUdp6Counts) {
    can("netstat", "udp6       0      0 ::ffff:239.255.0.9:1234 :::*\n");
    provider_.updateValues();
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
        EXPECT_FALSE(has("ClientGroup.1.GroupAddress")) << fault;
        box::setFault("netstat", "");
    }
}

TEST_F(FrontEndDataProviderTest, ALastLineWithoutALineFeedCounts) {
    const GroupMember member("239.255.0.1", 1234);
    box::setFault("netstat", "noeol");
    provider_.updateValues();
    EXPECT_EQ(text("ClientGroup.1.GroupAddress"), "239.255.0.1");
}

TEST_F(FrontEndDataProviderTest, RowsOfTheOldCountAreTakenAway) {
    at("ClientGroupNumberOfEntries") = Value(2);
    at("ClientGroup.2.GroupAddress") = Value(std::string("239.0.0.9"));
    at("ClientGroup.2.UpTime") = Value(7);
    at("ClientGroup.3.UpTime") = Value(8);
    provider_.updateValues();
    EXPECT_EQ(names(),
              (std::set<std::string>{"ClientGroupNumberOfEntries", "ClientGroup.3.UpTime"}));
}

TEST_F(FrontEndDataProviderTest, UpTimeGrowsWhileTheGroupStays) {
    const GroupMember member("239.255.0.1", 1234);
    provider_.updateValues();
    EXPECT_TRUE(box::waitUntil([&] {
        provider_.updateValues();
        return at("ClientGroup.1.UpTime").getInt64() >= 2;
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
    EXPECT_EQ(pthread_mutex_trylock(storage_.getStorageMutex().native()), 0);
    pthread_mutex_unlock(storage_.getStorageMutex().native());
    refresh.join();
    box::setFault("sysctl", "slow 2");
    std::thread start([&] { provider_.init(); });
    EXPECT_TRUE(box::waitForCalls("sysctl"));
    EXPECT_EQ(pthread_mutex_trylock(storage_.getStorageMutex().native()), 0);
    pthread_mutex_unlock(storage_.getStorageMutex().native());
    start.join();
}

}  // namespace
