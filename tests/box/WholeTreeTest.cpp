#include "tests/box/DaemonTest.h"
#include "tests/box/TreeListing.h"
#include "tests/support/GroupMember.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

constexpr char kGroup[] = "239.255.0.1";

class WholeTreeTest : public DaemonTest {
  protected:
    // The listing of trctl, so that people and this test see the same.
    static std::string listing() {
        const std::string output = "/tmp/listing";
        std::filesystem::remove(output);
        Child viewer({KELM_TRCTL_PROGRAM, "list", "--long"}, output);
        EXPECT_EQ(viewer.waitForEnd(), ExitStatus{}) << viewer.output();
        return box::readFile(output);
    }

    static void expectTree() {
        const std::string differences =
            TreeListing::differences(box::readFile(KELM_GOLDEN_TREE), listing());
        EXPECT_TRUE(differences.empty()) << differences;
    }
};

TEST_F(WholeTreeTest, TheTreeMatchesTheGoldenListingAlsoInALaterCycle) {
    const GroupMember player(kGroup, 1234);
    start();
    expectTree();
    waitForCycles(1);
    expectTree();
}

}  // namespace
