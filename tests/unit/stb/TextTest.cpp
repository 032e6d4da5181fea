#include "stb/src/common/Text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace TR::Utils;
using Texts = std::vector<std::string>;

TEST(UtilsTextTest, CopiesChangeCaseAndLeaveTheOriginal) {
    const std::string text = "MiXed 42 \xc3\x84";
    EXPECT_EQ(toLowerString(text), "mixed 42 \xc3\x84");
    EXPECT_EQ(toUpperString(text), "MIXED 42 \xc3\x84");
    EXPECT_EQ(text, "MiXed 42 \xc3\x84");
    EXPECT_EQ(toUpperString(""), "");
}

TEST(UtilsTextTest, TextsChangeCaseInPlace) {
    std::string text("aB\0c", 4);
    toUpper(text);
    EXPECT_EQ(text, std::string("AB\0C", 4));
    toLower(text);
    EXPECT_EQ(text, std::string("ab\0c", 4));
}

TEST(UtilsTextTest, LinesAreSplitWithOrWithoutTheirLineFeeds) {
    EXPECT_EQ(splitLines("a\n\nb", LineFeeds::Drop), (Texts{"a", "", "b"}));
    EXPECT_EQ(splitLines("a\n\nb", LineFeeds::Keep), (Texts{"a\n", "\n", "b"}));
    EXPECT_EQ(splitLines("a\nb\n", LineFeeds::Keep, 1), Texts{"a\n"});
    EXPECT_TRUE(splitLines("", LineFeeds::Keep).empty());
}

TEST(FormatTest, ATextOfAnyLengthIsFormattedWhole) {
    for (const std::size_t length : {0U, 1U, 510U, 511U, 512U, 513U, 5000U}) {
        const std::string text(length, 'x');
        EXPECT_EQ(TR::Utils::format("%s", text.c_str()), text);
    }
}

TEST(LeadingNumberTest, MayFollowWhiteSpaceAndBeFollowedByAnything) {
    EXPECT_EQ(leadingNumber(" \t42 dBm\n"), 42);
    EXPECT_EQ(leadingNumber("-42dBm"), -42);
    EXPECT_EQ(leadingNumber("780.9"), 780);
    EXPECT_EQ(leadingNumber("007"), 7);
    EXPECT_EQ(leadingNumber("+5"), 5);
}

TEST(LeadingNumberTest, ReachesTheEndsOf64Bits) {
    EXPECT_EQ(leadingNumber("9223372036854775807"), INT64_MAX);
    EXPECT_EQ(leadingNumber("-9223372036854775808"), INT64_MIN);
}

TEST(LeadingNumberTest, OutOfRangeOrWithoutADigitIsNoNumber) {
    for (const char* text : {"", " ", "dBm", "-", "- 5", "--5", ".5", "9223372036854775808",
                             "-9223372036854775809", "\xff"})
        EXPECT_EQ(leadingNumber(text), std::nullopt) << text;
}

TEST(LeadingNumberTest, ItsEndIsReported) {
    std::size_t end = 0;
    EXPECT_EQ(TR::Utils::leadingNumber(" -7x", &end), -7);
    EXPECT_EQ(end, 3U);
}
