#include "trctl/Pattern.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>

namespace {

using trctl::Pattern;

bool matches(const std::string& pattern, const std::string& address) {
    return Pattern(pattern).matches(address);
}

TEST(PatternTest, OneStarStaysWithinItsLevel) {
    EXPECT_TRUE(matches("Device.*.Status", "Device.IP.Status"));
    EXPECT_FALSE(matches("Device.*.Status", "Device.IP.Interface.Status"));
    EXPECT_FALSE(matches("*", "a.b"));
    EXPECT_TRUE(matches("*", ""));
    EXPECT_TRUE(matches("a*", "a"));
    EXPECT_TRUE(matches("a*b*c", "aXbXbXc"));
}

TEST(PatternTest, TwoStarsCrossLevels) {
    EXPECT_TRUE(matches("**", "a.b.c."));
    EXPECT_TRUE(matches("**Sent", "a.b.BytesSent"));
    EXPECT_TRUE(matches("Device.**.Sent", "Device.A.B.Sent"));
    EXPECT_TRUE(matches("a***c", "a.b.c"));
    EXPECT_FALSE(matches("Device.**", "Device"));
}

TEST(PatternTest, TwoStarsForALevelAlsoMatchNone) {
    EXPECT_TRUE(matches("Device.**.Name", "Device.Name"));
    EXPECT_TRUE(matches("**.Name", "Name"));
    EXPECT_TRUE(matches("**.**.Name", "Name"));
    EXPECT_TRUE(matches("**.Name", "A.B.Name"));
    EXPECT_FALSE(matches("**.Name", "A.MyName"));
    EXPECT_FALSE(matches("A**.Name", "Name"));
    EXPECT_FALSE(matches("Device.**A.Name", "Device.Name"));
}

TEST(PatternTest, QuestionMarksAndSetsMatchNoPoint) {
    EXPECT_FALSE(matches("a?b", "a.b"));
    EXPECT_FALSE(matches("a[!x]b", "a.b"));
    EXPECT_FALSE(matches("a[ -~]b", "a.b"));
    EXPECT_TRUE(matches("a[!x]b", "a1b"));
    EXPECT_TRUE(matches("[0-9][[:digit:]]", "42"));
    EXPECT_TRUE(matches("[]a]", "]"));
    EXPECT_FALSE(matches("[^]a]", "a"));
}

TEST(PatternTest, WhatIsNotASetStandsForItself) {
    EXPECT_TRUE(matches("[", "["));
    EXPECT_TRUE(matches("a[b", "a[b"));
    EXPECT_TRUE(matches("[a.b]", "[a.b]"));
    EXPECT_TRUE(matches("a\\*", "a*"));
    EXPECT_FALSE(matches("a\\*", "ab"));
    EXPECT_TRUE(matches("a\\", "a\\"));
}

TEST(PatternTest, ACharacterIsOneOfUtf8) {
    EXPECT_TRUE(matches("?", "\xD0\xA2"));
    EXPECT_FALSE(matches("??", "\xD0\xA2"));
    EXPECT_TRUE(matches("\xFF*", "\xFFz"));
    EXPECT_TRUE(matches("\xD0\xA2?", "\xD0\xA2z"));
}

TEST(PatternTest, BeneathNeedsMoreAfterThePoint) {
    const Pattern pattern("Device.*.", true);
    EXPECT_TRUE(pattern.matches("Device.A.x"));
    EXPECT_TRUE(pattern.matches("Device.A.B.C."));
    EXPECT_FALSE(pattern.matches("Device.A."));
    EXPECT_FALSE(pattern.matches("Device.A"));
}

// The same, written as a regular expression.
std::string expressionOf(const std::string& pattern) {
    std::string text;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        std::size_t stars = 0;
        while (at + stars < pattern.size() && pattern[at + stars] == '*') ++stars;
        const bool startsLevel = at == 0 || pattern[at - 1] == '.';
        if (stars > 1 && startsLevel && at + stars < pattern.size() && pattern[at + stars] == '.') {
            text += "(?:[^]*\\.)?";
            at += stars;
        } else if (stars > 0) {
            text += stars == 1 ? "[^.]*" : "[^]*";
            at += stars - 1;
        } else if (pattern[at] == '?') {
            text += "[^.]";
        } else {
            text += pattern[at] == '.' ? "\\." : std::string(1, pattern[at]);
        }
    }
    return text;
}

TEST(PatternTest, RandomPatternsMatchAsTheirRegularExpressionsDo) {
    std::mt19937 random(1);
    const auto text = [&](const std::string& letters, std::size_t longest) {
        std::string result;
        for (std::size_t i = random() % (longest + 1); i > 0; --i)
            result += letters[random() % letters.size()];
        return result;
    };
    int matched = 0;
    for (int i = 0; i < 3'000; ++i) {
        const std::string pattern = text("ab..***?", 10);
        const std::regex expression(expressionOf(pattern));
        for (int j = 0; j < 10; ++j) {
            const std::string address = text("ab..", 9);
            const bool expected = std::regex_match(address, expression);
            ASSERT_EQ(matches(pattern, address), expected) << pattern << ' ' << address;
            matched += expected ? 1 : 0;
        }
    }
    EXPECT_GT(matched, 1'000);
}

TEST(PatternTest, ManyStarsAndALongAddressDoNotTakeExponentialTime) {
    std::string pattern;
    for (int i = 0; i < 50; ++i) pattern += "**a*";
    EXPECT_FALSE(matches(pattern + "b", std::string(1024, 'a')));
    EXPECT_FALSE(matches("**a*a*a*a*a*a*a*b", std::string(1024, 'a')));
}

}  // namespace
