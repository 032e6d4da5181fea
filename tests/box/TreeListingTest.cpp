#include "tests/box/TreeListing.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr char kExpected[] =
    "# a comment\n"
    "\n"
    "A. -- object\n"
    "A.Name -i string a b\n"
    "A.Up w- integer ~[0-9]+\n"
    "A.Void -- string\n";

TEST(TreeListingTest, AListingThatAgreesHasNoDifferences) {
    EXPECT_EQ(TreeListing::differences(kExpected,
                                       "A. -- object\n"
                                       "A.Name -i string a b\n"
                                       "A.Up w- integer 12\n"
                                       "A.Void -- string\n"),
              "");
}

TEST(TreeListingTest, MissingAndExtraAddressesAreNamed) {
    EXPECT_EQ(TreeListing::differences(kExpected,
                                       "A.Name -i string a b\n"
                                       "A.New -- integer 1\n"
                                       "A.Up w- integer 12\n"),
              "missing:  A. -- object\n"
              "extra:    A.New -- integer 1\n"
              "missing:  A.Void -- string\n");
}

TEST(TreeListingTest, ADifferentValueShapeOrSettingShowsBesideWhatIsExpected) {
    EXPECT_EQ(TreeListing::differences(kExpected,
                                       "A. -- object\n"
                                       "A.Name -- string a b\n"
                                       "A.Up w- string 12s\n"
                                       "A.Void -- string  \n"),
              "expected: A.Name -i string a b\n"
              "is:       A.Name -- string a b\n"
              "expected: A.Up w- integer ~[0-9]+\n"
              "is:       A.Up w- string 12s\n"
              "expected: A.Void -- string\n"
              "is:       A.Void -- string  \n");
}

TEST(TreeListingTest, OfManyDifferencesTheFirstTenShow) {
    std::string listing;
    for (char name = 'a'; name <= 'l'; ++name) listing += std::string(1, name) + " -- object\n";
    const std::string text = TreeListing::differences("a -- object\n", listing);
    EXPECT_NE(text.find("extra:    k -- object\nand 1 more\n"), std::string::npos) << text;
}

TEST(TreeListingTest, UnsortedListingsAndAnEmptyExpectationDiffer) {
    const std::string wrong = "b -- object\na -- object\n";
    EXPECT_NE(TreeListing::differences(wrong, wrong), "");
    EXPECT_NE(TreeListing::differences("a -- object\nb -- object\n", wrong), "");
    EXPECT_NE(TreeListing::differences("# only a comment\n", ""), "");
}

TEST(TreeListingTest, AnInvalidShapeMatchesNothing) {
    EXPECT_NE(TreeListing::differences("a -- string ~[0-9\n", "a -- string [0-9\n"), "");
}

}  // namespace
