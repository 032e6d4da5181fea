#include "stb/src/common/JsonEscape.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>

using TR::Utils::escapeForJson;

namespace {

// The rules one byte at a time, as plainly as they can be written.
std::string reference(const std::string& text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const std::string special = "\"\\\b\f\n\r\t";
        const std::string letters = "\"\\bfnrt";
        const std::size_t at = byte == 0 ? std::string::npos : special.find(c);
        if (at != std::string::npos) {
            result += '\\';
            result += letters[at];
        } else if (byte < 32 || byte > 126) {
            char escape[8] = "";
            std::snprintf(escape, sizeof escape, "\\u%04x", byte);
            result += escape;
        } else {
            result += c;
        }
    }
    return result;
}

}  // namespace

TEST(EscapeForJsonTest, AnEmptyTextStaysEmpty) {
    EXPECT_EQ(escapeForJson(""), "");
}

TEST(EscapeForJsonTest, ATabAndAQuoteGetABackslash) {
    EXPECT_EQ(escapeForJson("a\tb\"c"), "a\\tb\\\"c");
}

TEST(EscapeForJsonTest, ShortEscapesAreUsedWhereJsonHasThem) {
    EXPECT_EQ(escapeForJson("\"\\\b\f\n\r\t"), R"(\"\\\b\f\n\r\t)");
}

TEST(EscapeForJsonTest, OtherBytesAreEscapedOneByOneInLowerCase) {
    EXPECT_EQ(escapeForJson("\xc3\xa9"), "\\u00c3\\u00a9");
    EXPECT_EQ(escapeForJson(std::string("\0\x1f\x7f\xff", 4)), "\\u0000\\u001f\\u007f\\u00ff");
}

TEST(EscapeForJsonTest, TheSolidusStays) {
    EXPECT_EQ(escapeForJson("/~ }"), "/~ }");
}

TEST(EscapeForJsonTest, EveryByteFollowsTheReference) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        EXPECT_EQ(escapeForJson(one), reference(one)) << byte;
        all += one;
    }
    EXPECT_EQ(escapeForJson(all), reference(all));
}

TEST(EscapeForJsonTest, RandomTextsFollowTheReference) {
    std::mt19937 random(20200131);  // NOLINT: the same texts in every run
    for (unsigned round = 0; round < 500; ++round) {
        std::string text(random() % 300, '\0');
        const auto plainness = random() % 20;
        for (char& byte : text) {
            const auto any = static_cast<char>(random() % 256);
            byte = random() % 20 < plainness ? static_cast<char>('a' + random() % 26) : any;
        }
        ASSERT_EQ(escapeForJson(text), reference(text)) << round;
    }
}

TEST(EscapeForJsonTest, TheResultTakesNoMoreMemoryThanItNeeds) {
    for (const char byte : {'a', '\n', '\0'}) {
        const std::string escaped = escapeForJson(std::string(1U << 20, byte));
        EXPECT_EQ(escaped.capacity(), escaped.size());
    }
}
