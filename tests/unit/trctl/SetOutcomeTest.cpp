#include "trctl/SetOutcome.h"

#include <gtest/gtest.h>

namespace {

using trctl::judgeSet;

TEST(SetOutcomeTest, WhatReadsAsGivenIsTakenWithoutARemark) {
    EXPECT_TRUE(judgeSet("new", "old", "new").isTaken);
    EXPECT_EQ(judgeSet("new", "old", "new").remark, "");
    EXPECT_TRUE(judgeSet("same", "same", "same").isTaken);
    EXPECT_TRUE(judgeSet("", "old", "").isTaken);
}

TEST(SetOutcomeTest, TheSameNumberWrittenInAnotherWayIsTaken) {
    for (const char* given : {"+7", "007", " 7"}) {
        EXPECT_TRUE(judgeSet(given, "5", "7").isTaken) << given;
        EXPECT_NE(judgeSet(given, "5", "7").remark, "") << given;
    }
    EXPECT_TRUE(judgeSet("-0", "5", "0").isTaken);
}

TEST(SetOutcomeTest, ANumberWithTrailingTextIsNotTaken) {
    EXPECT_FALSE(judgeSet("42abc", "5", "42").isTaken);
    EXPECT_FALSE(judgeSet("42abc", "42", "42").isTaken);
    EXPECT_FALSE(judgeSet("1.5", "0", "1").isTaken);
    EXPECT_TRUE(judgeSet("42abc", "5", "42abc").isTaken);
}

TEST(SetOutcomeTest, LostTrailingWhiteSpaceIsTakenWithARemark) {
    EXPECT_TRUE(judgeSet("text \n", "old", "text").isTaken);
    EXPECT_NE(judgeSet("text \n", "old", "text").remark, "");
    EXPECT_TRUE(judgeSet("text", "old", "text\n").isTaken);
    EXPECT_TRUE(judgeSet("  ", "old", "").isTaken);
    // A full disk looks the same then.
    EXPECT_FALSE(judgeSet("text\n", "text", "text").isTaken);
}

TEST(SetOutcomeTest, AValueThatStaysAsItWasDidNotTake) {
    EXPECT_FALSE(judgeSet("new", "old", "old").isTaken);
    EXPECT_NE(judgeSet("new", "old", "old").remark.find("did not take"), std::string::npos);
    EXPECT_FALSE(judgeSet("", "old", "old").isTaken);
}

TEST(SetOutcomeTest, AnythingElseThatIsReadBackIsNotTaken) {
    EXPECT_FALSE(judgeSet("new", "old", "third").isTaken);
    EXPECT_FALSE(judgeSet("99999999999999999999", "5", "9223372036854775807").isTaken);
}

TEST(SetOutcomeTest, ATextThatIsNotANumberIsExplained) {
    const std::string refusal = "Logic error (org.freedesktop.DBus.Error.Failed)";
    for (const char* text : {"", "ten", "-", "x5", "$5"})
        EXPECT_EQ(trctl::reasonOfRefusal(text, refusal), "it is not a number") << text;
    EXPECT_EQ(trctl::reasonOfRefusal("99999999999999999999", refusal),
              "the number does not fit into 64 bits");
    EXPECT_EQ(trctl::reasonOfRefusal(" -99999999999999999999x", refusal),
              "the number does not fit into 64 bits");
    EXPECT_EQ(trctl::reasonOfRefusal("ten", "too large"), "too large");
}

}  // namespace
