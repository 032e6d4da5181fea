#include "tests/support/TreeListing.h"

#include <gtest/gtest.h>

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

TEST(TreeListingTest, EveryDifferenceIsShown) {
    EXPECT_EQ(TreeListing::differences(kExpected,
                                       "A.Name -- string a b\n"
                                       "A.New -- integer 1\n"
                                       "A.Up w- string 12s\n"
                                       "A.Void -- string  \n"),
              "missing:  A. -- object\n"
              "expected: A.Name -i string a b\n"
              "is:       A.Name -- string a b\n"
              "expected: A.Up w- integer ~[0-9]+\n"
              "is:       A.Up w- string 12s\n"
              "expected: A.Void -- string\n"
              "is:       A.Void -- string  \n"
              "extra:    A.New -- integer 1\n");
}

TEST(TreeListingTest, AValueOfAnotherShapeAnInvalidShapeAndAnEmptyExpectationDiffer) {
    EXPECT_NE(TreeListing::differences("a -- integer ~[0-9]+\n", "a -- integer 12s\n"), "");
    EXPECT_NE(TreeListing::differences("a -- string ~[0-9\n", "a -- string [0-9\n"), "");
    EXPECT_NE(TreeListing::differences("# only a comment\n", ""), "");
}

}  // namespace
