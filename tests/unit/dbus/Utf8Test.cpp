#include "dbus/Utf8.h"

#include <dbus/dbus.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using TR::toValidUtf8;

const std::string kBad = "\xEF\xBF\xBD";

TEST(Utf8Test, ValidTextsPassUnchanged) {
    for (const std::string& text :
         {std::string(), std::string("plain ASCII, longer than eight bytes\t\n\x7f"),
          std::string("\xC2\x80 \xDF\xBF"), std::string("\xE0\xA0\x80 \xED\x9F\xBF \xEF\xBF\xBF"),
          std::string("\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF"), std::string("Телевизор 电视")})
        EXPECT_EQ(toValidUtf8(text), text);
}

TEST(Utf8Test, EachBadByteBecomesAReplacementCharacter) {
    EXPECT_EQ(toValidUtf8("a\xFF\xFE"
                          "b"),
              "a" + kBad + kBad + "b");
    EXPECT_EQ(toValidUtf8("\x80"), kBad);
}

TEST(Utf8Test, ANulBecomesAReplacementCharacter) {
    EXPECT_EQ(toValidUtf8(std::string("a\0b", 3)), "a" + kBad + "b");
    EXPECT_EQ(toValidUtf8(std::string("01234567\0", 9)), "01234567" + kBad);
}

TEST(Utf8Test, ATruncatedSequenceIsReplacedByteByByte) {
    EXPECT_EQ(toValidUtf8("\xE2\x82"), kBad + kBad);
    EXPECT_EQ(toValidUtf8("\xF0\x9F\x98x"), kBad + kBad + kBad + "x");
}

TEST(Utf8Test, OverlongFormsSurrogatesAndWhatLiesBeyondUnicodeAreBad) {
    EXPECT_EQ(toValidUtf8("\xC0\xAF"), kBad + kBad);
    EXPECT_EQ(toValidUtf8("\xE0\x9F\xBF"), kBad + kBad + kBad);
    EXPECT_EQ(toValidUtf8("\xED\xA0\x80"), kBad + kBad + kBad);
    EXPECT_EQ(toValidUtf8("\xF0\x8F\xBF\xBF"), kBad + kBad + kBad + kBad);
    EXPECT_EQ(toValidUtf8("\xF4\x90\x80\x80"), kBad + kBad + kBad + kBad);
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

TEST(Utf8Test, AnyBytesBecomeWhatTheBusLibraryTakes) {
    std::mt19937 random(1);  // the same texts in every run
    for (int i = 0; i < 20000; ++i) {
        std::string text(random() % 40, '\0');
        for (char& byte : text) byte = static_cast<char>(random());
        const std::string valid = toValidUtf8(text);
        EXPECT_EQ(valid.find('\0'), std::string::npos);
        EXPECT_TRUE(dbus_validate_utf8(valid.c_str(), nullptr));
    }
}

}  // namespace
