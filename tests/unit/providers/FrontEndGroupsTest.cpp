#include "providers/FrontEndDataProvider.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using IGMP = TR::FrontEndDataProvider::FrontEnd::IGMP;

std::vector<std::string> addresses(const IGMP& igmp) {
    std::vector<std::string> texts;
    for (const auto& group : igmp.clientGroups) texts.push_back(group.groupAddress);
    return texts;
}

long long firstSeen(const IGMP& igmp, const std::string& address) {
    const auto group = igmp.clientGroups.find({address, 0});
    return group == igmp.clientGroups.end() ? -1 : group->firstSeen.toInt64();
}

TEST(ClientGroupsTest, TheOrderIsThatOfTheTexts) {
    IGMP igmp;
    igmp.setJoinedGroups({"239.0.0.2", "239.0.0.10", "224.0.0.251"}, 1);
    EXPECT_EQ(addresses(igmp),
              (std::vector<std::string>{"224.0.0.251", "239.0.0.10", "239.0.0.2"}));
    EXPECT_EQ(igmp.ClientGroupNumberOfEntries, 3u);
}

TEST(ClientGroupsTest, AGroupThatStaysKeepsItsTimeAndOneThatWasAwayStartsAgain) {
    IGMP igmp;
    igmp.setJoinedGroups({"239.0.0.1", "239.0.0.2", "239.0.0.3"}, 100);
    igmp.setJoinedGroups({"239.0.0.2"}, 200);
    EXPECT_EQ(addresses(igmp), std::vector<std::string>{"239.0.0.2"});
    EXPECT_EQ(igmp.ClientGroupNumberOfEntries, 1u);
    igmp.setJoinedGroups({"239.0.0.1", "239.0.0.2"}, 300);
    EXPECT_EQ(firstSeen(igmp, "239.0.0.1"), 300);
    EXPECT_EQ(firstSeen(igmp, "239.0.0.2"), 100);
    igmp.setJoinedGroups({}, 400);
    EXPECT_TRUE(igmp.clientGroups.empty());
    EXPECT_EQ(igmp.ClientGroupNumberOfEntries, 0u);
}

TEST(FrontEndWithoutAStoreTest, NothingIsPublished) {
    EXPECT_FALSE(TR::FrontEndDataProvider(nullptr).store());
}

}  // namespace
