#include "trctl/Text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace {

using namespace trctl;

TEST(TextTest, PlainAndForeignLettersStayAsTheyAre) {
    for (const char* text : {"", "KELM Orbit B410", "Телевизор 电视 \xF0\x9F\x93\xBA", "a=\"b\" c"})
        EXPECT_EQ(escaped(text), text);
}

TEST(TextTest, ControlCharactersAreEscaped) {
    EXPECT_EQ(escaped("a\nb\r\tc"), "a\\nb\\r\\tc");
    EXPECT_EQ(escaped("\x1b[31mred\x07\x7f"), "\\x1b[31mred\\x07\\x7f");
    EXPECT_EQ(escaped(std::string("a\0b", 3)), "a\\x00b");
    EXPECT_EQ(escaped("\xC2\x9B"
                      "31m"),
              "\\u009b31m");
    EXPECT_EQ(escaped("\xE2\x80\xAE"
                      "abc\xE2\x81\xA6"),
              "\\u202eabc\\u2066");
    EXPECT_EQ(escaped("\xE2\x80\xA8\xEF\xBB\xBF\xF3\xA0\x81\x81"), "\\u2028\\ufeff\\U000e0041");
}

TEST(TextTest, ABackslashOfTheTextCannotBeTakenForAnEscape) {
    EXPECT_EQ(escaped("C:\\new"), "C:\\\\new");
}

TEST(TextTest, BytesThatAreNotUtf8AreEscapedOneByOne) {
    EXPECT_EQ(escaped("a\xFF\xC3"), "a\\xff\\xc3");
    EXPECT_EQ(escaped("\xC0\xAF"), "\\xc0\\xaf");           // overlong
    EXPECT_EQ(escaped("\xED\xA0\x80"), "\\xed\\xa0\\x80");  // half a surrogate
    EXPECT_EQ(escaped("\xE2\x80"), "\\xe2\\x80");           // cut
    EXPECT_EQ(escaped("\xF4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
}

TEST(TextTest, EveryTwoBytesGiveALineWithoutControlCharacters) {
    for (int i = 0; i < 0x10000; ++i) {
        const std::string text = {static_cast<char>(i >> 8), static_cast<char>(i & 0xff)};
        for (const char c : escaped(text)) {
            const auto byte = static_cast<unsigned char>(c);
            ASSERT_TRUE(byte >= 0x20 && byte != 0x7f) << i;
        }
    }
}

TEST(TextTest, JsonKeepsItsMeaningAndItsLines) {
    EXPECT_EQ(escapedJson("{\n  \"a\": \"\\n \\\\ \"\n}"), "{\n  \"a\": \"\\n \\\\ \"\n}");
    EXPECT_EQ(escapedJson("\"\x7f\xC2\x85\xE2\x80\xAE\""), "\"\\u007f\\u0085\\u202e\"");
    EXPECT_EQ(escapedJson("\"\xF3\xA0\x81\x81\""), "\"\\udb40\\udc41\"");
    EXPECT_EQ(escapedJson("\xFF"), "\\ufffd");
}

TEST(TextTest, ControlCharactersInsideJsonStringsAreEscaped) {
    EXPECT_EQ(escapedJson("{\t\"a\x1b[31m\": \"\r\t\n\x07\"\r\n}"),
              "{\t\"a\\u001b[31m\": \"\\u000d\\u0009\\u000a\\u0007\"\r\n}");
    EXPECT_EQ(escapedJson("[\"\\\"\x1b\", \"\\\\\",\n\"\x1b\"]"),
              "[\"\\\"\\u001b\", \"\\\\\",\n\"\\u001b\"]");
}

TEST(TextTest, WidthCountsColumnsNotBytes) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    EXPECT_EQ(width("abc"), 3U);
    EXPECT_EQ(width("\xC3\xA4\xC3\xB6"), 2U);
    EXPECT_EQ(width("\xE7\x94\xB5\xE8\xA7\x86"), 4U);
    EXPECT_EQ(padded("\xC3\xA4", 3), "\xC3\xA4  ");
    EXPECT_EQ(padded("abcd", 3), "abcd");
}

TEST(TextTest, ALongTextIsCutBetweenCharacters) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    EXPECT_EQ(shortened("abcdef", 6, "~"), "abcdef");
    EXPECT_EQ(shortened("abcdef", 4, "~"), "abc~");
    EXPECT_EQ(shortened("\xE7\x94\xB5\xE8\xA7\x86", 3, "~"), "\xE7\x94\xB5~");
    EXPECT_EQ(shortened("abc", 0, "~"), "~");
}

TEST(TextTest, ALongAddressLosesItsFirstLevels) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    const std::string address = "Device.IP.Interface.1.Stats.BytesSent";
    EXPECT_EQ(shortenedAtLeft(address, 37), address);
    EXPECT_EQ(shortenedAtLeft(address, 20), "...1.Stats.BytesSent");
    EXPECT_EQ(shortenedAtLeft(address, 18), "...Stats.BytesSent");
    EXPECT_EQ(shortenedAtLeft(address, 17), "...BytesSent");
    EXPECT_EQ(shortenedAtLeft(address, 10), "...tesSent");
    EXPECT_EQ(shortenedAtLeft("Device.IP.Interface.", 15), "...Interface.");
    EXPECT_EQ(shortenedAtLeft("Device.IP.Interface.", 9), "...rface.");
    EXPECT_EQ(shortenedAtLeft("a.\xE7\x94\xB5\xE8\xA7\x86", 5), "...\xE8\xA7\x86");
    EXPECT_EQ(shortenedAtLeft("abcdef", 3), "...");
    EXPECT_EQ(shortenedAtLeft("abcdef", 2), "..");
    EXPECT_EQ(shortenedAtLeft("abcdef", 0), "");
    for (std::size_t columns = 0; columns < 40; ++columns)
        EXPECT_LE(width(shortenedAtLeft(address, columns)), columns);
}

TEST(TextTest, BytesThatAreNotUtf8AreFound) {
    EXPECT_TRUE(isUtf8("plain \xD0\xA2"));
    EXPECT_TRUE(isUtf8(""));
    EXPECT_FALSE(isUtf8("a\xFF"));
    EXPECT_FALSE(isUtf8("\xD0"));
}

}  // namespace
