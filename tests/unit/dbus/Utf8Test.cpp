#include "dbus/Utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using TR::toValidUtf8;

const std::string kBad = "\xEF\xBF\xBD";

// Any bytes are compared with libdbus by the fuzzer's replay.
TEST(Utf8Test, ValidTextsPassUnchanged) {
    for (const std::string& text :
         {std::string(), std::string("plain ASCII, longer than eight bytes\t\n\x7f"),
          std::string("\xC2\x80 \xDF\xBF"), std::string("\xE0\xA0\x80 \xED\x9F\xBF \xEF\xBF\xBF"),
          std::string("\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF"), std::string("Телевизор 电视")})
        EXPECT_EQ(toValidUtf8(text), text);
}

TEST(Utf8Test, EachBadByteBecomesAReplacementCharacter) {
    const std::pair<std::string, std::string> rows[] = {
        {"a\xFF\xFE"
         "b",
         "a" + kBad + kBad + "b"},
        {"\x80", kBad},
        {std::string("a\0b", 3), "a" + kBad + "b"},
        {std::string("01234567\0", 9), "01234567" + kBad},
        {"\xE2\x82", kBad + kBad},  // cut off
        {"\xF0\x9F\x98x", kBad + kBad + kBad + "x"},
        {"\xC0\xAF", kBad + kBad},  // overlong forms, surrogates and what lies beyond Unicode
        {"\xE0\x9F\xBF", kBad + kBad + kBad},
        {"\xED\xA0\x80", kBad + kBad + kBad},
        {"\xF0\x8F\xBF\xBF", kBad + kBad + kBad + kBad},
        {"\xF4\x90\x80\x80", kBad + kBad + kBad + kBad},
    };
    for (const auto& [text, valid] : rows) EXPECT_EQ(toValidUtf8(text), valid);
}

TEST(Utf8Test, ABadByteIsFoundAtEveryOffsetOfAWord) {
    for (std::size_t offset = 0; offset < 24; ++offset) {
        std::string text(24, 'x');
        text[offset] = '\xFF';
        std::string expected(24, 'x');
        expected.replace(offset, 1, kBad);
        EXPECT_EQ(toValidUtf8(text), expected) << offset;
    }
}

}  // namespace
