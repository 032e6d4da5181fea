#include "cwmp/Text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace cwmp;

const std::string kBad = "\xEF\xBF\xBD";

TEST(CwmpTextTest, EveryCharacterThatXmlForbidsIsReplaced) {
    for (int byte = 0; byte < 32; ++byte) {
        const std::string text = std::string("a") + static_cast<char>(byte) + "b";
        const bool isAllowed = byte == '\t' || byte == '\n' || byte == '\r';
        EXPECT_EQ(xmlClean(text), isAllowed ? text : "a" + kBad + "b") << byte;
        EXPECT_EQ(isXmlClean(text), isAllowed) << byte;
    }
    EXPECT_EQ(xmlClean("\xEF\xBF\xBE \xEF\xBF\xBF"), kBad + " " + kBad);
}

TEST(CwmpTextTest, ValidCharactersOfEveryLengthStay) {
    for (const std::string text :
         {"", "a\x7f", "\xC2\x80", "\xC3\xA9 \xE7\x94\xB5", "\xF0\x9F\x93\xBA", "\xEE\x80\x80",
          "\xED\x9F\xBF", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(xmlClean(text), text);
        EXPECT_TRUE(isXmlClean(text)) << text;
    }
}

TEST(CwmpTextTest, BytesThatAreNotUtf8AreReplacedOneByOne) {
    EXPECT_EQ(xmlClean("\xFF"), kBad);
    EXPECT_EQ(xmlClean("a\xC3"), "a" + kBad);
    EXPECT_EQ(xmlClean("\xE2\x82z"), kBad + kBad + "z");
    EXPECT_EQ(xmlClean("\xC0\x80"), kBad + kBad);
    EXPECT_EQ(xmlClean("\xED\xA0\x80"), kBad + kBad + kBad);
    EXPECT_EQ(xmlClean("\xF4\x90\x80\x80"), kBad + kBad + kBad + kBad);
}

TEST(CwmpTextTest, AHeadIsCutBetweenTwoCharacters) {
    EXPECT_EQ(headOf("abc", 3), "abc");
    EXPECT_EQ(headOf("abc", 2), "ab");
    EXPECT_EQ(headOf("a\xE7\x94\xB5", 3), "a");
    EXPECT_EQ(headOf("a\xE7\x94\xB5 ", 4), "a\xE7\x94\xB5");
    EXPECT_EQ(headOf("\xE7\x94\xB5", 2), "");
}

TEST(CwmpTextTest, ATailBeginsWithALine) {
    EXPECT_EQ(tailOf("one\ntwo\n", 20), "one\ntwo\n");
    EXPECT_EQ(tailOf("one\ntwo\n", 4), "two\n");
    EXPECT_EQ(tailOf("one\ntwo\n", 5), "two\n");
    EXPECT_EQ(tailOf("one\ntwo\nthree", 7), "three");
    EXPECT_EQ(tailOf("no line feed", 4), "feed");
    EXPECT_EQ(tailOf("\xE7\x94\xB5", 2), "");
    EXPECT_EQ(tailOf("abcdef\n", 3), "ef\n");
}

TEST(CwmpTextTest, TheEscapesOfTheLogAreUndoneOnce) {
    EXPECT_EQ(unescapeLog(R"(a\nb\t\"c\" \\n)"), "a\nb\t\"c\" \\n");
    EXPECT_EQ(unescapeLog(R"(\u00c3\u00A9\u001b)"), "\xC3\xA9\x1b");
    EXPECT_EQ(unescapeLog(R"(\\u00c3)"), R"(\u00c3)");
    EXPECT_EQ(unescapeLog(R"(\x \u12 \u0 \)"), R"(\x \u12 \u0 \)");
}

TEST(CwmpTextTest, AShellReadsAnEscapedTextAsItWas) {
    EXPECT_EQ(escapeForDoubleQuotes("a\\b \"c\" $(d) `e` 'f'\n"),
              "a\\\\b \\\"c\\\" \\$(d) \\`e\\` 'f'\n");
}

}  // namespace
