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
    // The viewer's own listing, so that people and this test see the same.
    static std::string listing() {
        const std::string output = "/tmp/listing";
        Child viewer({KELM_TREE_PROGRAM, "list"}, output);
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

constexpr char kExpected[] =
    "# a comment\n"
    "\n"
    "A. - - object\n"
    "A.Name - inform parameter a b\n"
    "A.Up writable - parameter ~[0-9]+\n"
    "A.Void - - parameter\n";

TEST(TreeListingTest, AListingThatAgreesHasNoDifferences) {
    EXPECT_EQ(TreeListing::differences(kExpected,
                                       "A. - - object\n"
                                       "A.Name - inform parameter a b\n"
                                       "A.Up writable - parameter 12\n"
                                       "A.Void - - parameter\n"),
              "");
}

TEST(TreeListingTest, MissingAndExtraAddressesAreNamed) {
    EXPECT_EQ(TreeListing::differences(kExpected,
                                       "A.Name - inform parameter a b\n"
                                       "A.New - - parameter 1\n"
                                       "A.Up writable - parameter 12\n"),
              "missing:  A. - - object\n"
              "extra:    A.New - - parameter 1\n"
              "missing:  A.Void - - parameter\n");
}

TEST(TreeListingTest, ADifferentValueShapeOrSettingShowsBesideWhatIsExpected) {
    EXPECT_EQ(TreeListing::differences(kExpected,
                                       "A. - - object\n"
                                       "A.Name - - parameter a b\n"
                                       "A.Up writable - parameter 12s\n"
                                       "A.Void - - parameter  \n"),
              "expected: A.Name - inform parameter a b\n"
              "is:       A.Name - - parameter a b\n"
              "expected: A.Up writable - parameter ~[0-9]+\n"
              "is:       A.Up writable - parameter 12s\n"
              "expected: A.Void - - parameter\n"
              "is:       A.Void - - parameter  \n");
}

TEST(TreeListingTest, OfManyDifferencesTheFirstTenShow) {
    std::string listing;
    for (char name = 'a'; name <= 'l'; ++name) listing += std::string(1, name) + " - - object\n";
    const std::string text = TreeListing::differences("a - - object\n", listing);
    EXPECT_NE(text.find("extra:    k - - object\nand 1 more\n"), std::string::npos) << text;
}

TEST(TreeListingTest, ListingsOutOfOrderAndAnEmptyExpectationAreNoAgreement) {
    const std::string wrong = "b - - object\na - - object\n";
    EXPECT_NE(TreeListing::differences(wrong, wrong), "");
    EXPECT_NE(TreeListing::differences("a - - object\nb - - object\n", wrong), "");
    EXPECT_NE(TreeListing::differences("# only a comment\n", ""), "");
}

TEST(TreeListingTest, AShapeThatIsNoExpressionMatchesNothing) {
    EXPECT_NE(TreeListing::differences("a - - parameter ~[0-9\n", "a - - parameter [0-9\n"), "");
}

}  // namespace
