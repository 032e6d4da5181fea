#include "stb/src/common/JsonEscape.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

using TR::Utils::escapeForJson;
using namespace std::string_literals;

// Every byte and random texts are compared with the plain rule by the fuzzer's replay.
TEST(EscapeForJsonTest, QuotesBackslashesAndWhatIsNotPrintableAsciiAreEscaped) {
    const std::pair<std::string, std::string> rows[] = {
        {"", ""},
        {"a\tb\"c", "a\\tb\\\"c"},
        {"\"\\\b\f\n\r\t", R"(\"\\\b\f\n\r\t)"},
        {"\xc3\xa9", "\\u00c3\\u00a9"},
        {"\0\x1f\x7f\xff"s, "\\u0000\\u001f\\u007f\\u00ff"},
        {"/~ }", "/~ }"},
    };
    for (const auto& [text, escaped] : rows) EXPECT_EQ(escapeForJson(text), escaped);
}

TEST(EscapeForJsonTest, TheResultTakesNoMoreMemoryThanItNeeds) {
    for (const char byte : {'a', '\n', '\0'}) {
        const std::string escaped = escapeForJson(std::string(1U << 20, byte));
        EXPECT_EQ(escaped.capacity(), escaped.size());
    }
}
