#include "tests/box/DaemonTest.h"
#include "tests/box/TreeListing.h"
#include "tests/support/GroupMember.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

constexpr char kGroup[] = "239.255.0.1";

class WholeTreeTest : public DaemonTest {
  protected:
    // The listing of trctl, so that people and this test see the same.
    static std::string listing() {
        const std::string output = "/tmp/listing";
        Child viewer({KELM_TRCTL_PROGRAM, "list", "--long"}, output);
        EXPECT_EQ(viewer.waitForEnd(), ExitStatus{}) << viewer.output();
        return box::readFile(output);
    }
    static std::string golden() { return box::readFile(KELM_GOLDEN_TREE); }

    static void expectTree(const std::string& expected) {
        const std::string differences = TreeListing::differences(expected, listing());
        EXPECT_TRUE(differences.empty()) << differences;
    }
};

/// The golden listing where nobody has joined a group.
std::string withoutGroups(const std::string& golden) {
    std::string text;
    std::istringstream stream(golden);
    for (std::string line; std::getline(stream, line);) {
        if (line.find("IGMP.ClientGroup.1.") != std::string::npos) continue;
        if (line.find("IGMP.ClientGroupNumberOfEntries ") != std::string::npos) line.back() = '0';
        text += line + "\n";
    }
    return text;
}

TEST_F(WholeTreeTest, EveryAddressIsAsTheGoldenListingHasIt) {
    const GroupMember player(kGroup, 1234);
    start();
    expectTree(golden());
}

TEST_F(WholeTreeTest, ALaterCycleMovesLiveValuesOnly) {
    const GroupMember player(kGroup, 1234);
    start();
    waitForCycles(1);
    expectTree(golden());
}

TEST_F(WholeTreeTest, WithoutAGroupItsRowIsNotThere) {
    start();
    expectTree(withoutGroups(golden()));
}

}  // namespace
