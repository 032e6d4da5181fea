#include "stb/src/common/NSRegExp.h"
#include "tests/unit/stb/ChildProcess.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

using Texts = std::vector<std::string>;

static_assert(!std::is_copy_constructible_v<NSRegExp> && !std::is_copy_assignable_v<NSRegExp>,
              "a copy would free the compiled expression twice");

TEST(NSRegExpTest, AMatchFillsTheWholeMatchAndTheGroups) {
    Texts groups;
    EXPECT_TRUE(NSRegExp("signal: (-?[0-9]+) (dBm)").match("\tsignal: -45 dBm\n", groups));
    EXPECT_EQ(groups, (Texts{"signal: -45 dBm", "-45", "dBm"}));
}

TEST(NSRegExpTest, AGroupThatTookNoPartIsEmpty) {
    Texts groups;
    EXPECT_TRUE(NSRegExp("(a)|(b)").match("b", groups));
    EXPECT_EQ(groups, (Texts{"b", "", "b"}));
}

TEST(NSRegExpTest, NoMatchEmptiesTheGroups) {
    Texts groups{"old"};
    EXPECT_FALSE(NSRegExp("^x$").match("y", groups));
    EXPECT_TRUE(groups.empty());
}

TEST(NSRegExpTest, AnExpressionMatchesAgainAndAgain) {
    const NSRegExp expression("^[a-z]+$");
    EXPECT_TRUE(expression.match("abc"));
    EXPECT_FALSE(expression.match("ABC"));
    EXPECT_TRUE(expression.match("x"));
}

TEST(NSRegExpTest, PatternsAreExtended) {
    EXPECT_TRUE(NSRegExp("^(ab){2}$").match("abab"));
}

TEST(NSRegExpTest, AnInvalidPatternIsReportedAndNeverMatches) {
    const ChildResult child = runInChild([] {
        const NSRegExp broken("a(b");
        Texts groups{"old"};
        std::printf("%d %d", broken.match("ab"), broken.match("ab", groups));
        std::printf(" %zu", groups.size());
    });
    EXPECT_TRUE(child.exitedWith(0));
    EXPECT_EQ(child.out, "0 0 0");
    EXPECT_EQ(child.err,
              "NSRegExp: Error while compiling regexp: a(b\n"
              "NSRegExp: Error while matching (invalid regexp: a(b)\n"
              "NSRegExp: Error while matching (invalid regexp: a(b)\n");
}

TEST(NSRegExpTest, AnyBytesCanBeSearched) {
    Texts groups;
    EXPECT_TRUE(NSRegExp("ssid: (.*)$").match("ssid: caf\xc3\xa9", groups));
    EXPECT_TRUE(NSRegExp("a").match(std::string("a\0b", 3)));
    EXPECT_FALSE(NSRegExp("b").match(std::string("a\0b", 3)));
}
