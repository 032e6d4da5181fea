#include "client/ShellWords.h"

#include <gtest/gtest.h>

namespace {

using client::shellWords;
using Words = std::vector<std::string>;

TEST(ShellWordsTest, ALineIsSplitAsAShellDoes) {
    EXPECT_EQ(shellWords("").words, (Words{""}));
    EXPECT_EQ(shellWords("trctl ").words, (Words{"trctl", ""}));
    EXPECT_EQ(shellWords("trctl  get\tD").words, (Words{"trctl", "get", "D"}));
    EXPECT_EQ(shellWords("trctl set '' a\\ b a\\  ").words,
              (Words{"trctl", "set", "", "a b", "a ", ""}));
    EXPECT_EQ(shellWords("t a\\\\ \"b\\\"c\\d\" 'e\\f'g ").words,
              (Words{"t", "a\\", "b\"c\\d", "e\\fg", ""}));
}

TEST(ShellWordsTest, NothingIsExpanded) {
    EXPECT_EQ(shellWords("$(touch /tmp/x) `a $HOME ~ *").words,
              (Words{"$(touch", "/tmp/x)", "`a", "$HOME", "~", "*"}));
}

TEST(ShellWordsTest, AnOpenQuoteIsSeen) {
    EXPECT_TRUE(shellWords("trctl get \"Dev").isQuoted);
    EXPECT_TRUE(shellWords("trctl get 'a b").isQuoted);
    EXPECT_EQ(shellWords("trctl get 'a b").words.back(), "a b");
    for (const char* line : {"trctl get Dev", "trctl get 'a'", "trctl get \"a\" ", "trctl a\\'"})
        EXPECT_FALSE(shellWords(line).isQuoted) << line;
}

}  // namespace
