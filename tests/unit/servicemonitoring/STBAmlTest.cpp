#include "stb/src/amlogic/STBAml.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace {

// Read when the first message makes the logger, in whichever test that is.
const int kLoggerSettings = setenv("KELM_LOG_LEVEL", "error", 1) +
                            setenv("KELM_LOG_LINENUM", "1", 1) + unsetenv("KELM_LOG_SYSLOG");

class GetSysTest : public ::testing::Test {
  protected:
    std::optional<int> reading(const std::string& content) const {
        return STBAml::getSys<int>(folder_.write("counter", content));
    }

    /// The log of reading a file that gives no reading.
    static std::string logOf(const std::string& path) {
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(STBAml::getSys<int>(path), std::nullopt);
        return ::testing::internal::GetCapturedStderr();
    }

    const TempFolder folder_;
};

TEST_F(GetSysTest, TheNumberOfTheFileIsReadInItsWholeRange) {
    const std::pair<const char*, int> rows[] = {
        {"42\n", 42},
        {"0", 0},
        {"-3\n", -3},
        {"+3\n", 3},
        {" \t\n 42 errors\n", 42},
        {"42abc", 42},
        {"0x10", 0},
        {"1\n2\n", 1},
        {"2147483647\n", std::numeric_limits<int>::max()},
        {"-2147483648\n", std::numeric_limits<int>::min()},
    };
    for (const auto& [content, number] : rows) EXPECT_EQ(reading(content), number) << content;
}

TEST_F(GetSysTest, AFileWithoutANumberOfTheRangeGivesNoReading) {
    for (const char* text : {"", "\n", "none\n", "-", "discontinuities 5", "\xff\xfe", "2147483648",
                             "-2147483649", "4294967295", "99999999999999999999"})
        EXPECT_EQ(reading(text), std::nullopt) << text;
    EXPECT_EQ(reading(std::string("\0005\n", 3)), std::nullopt);
    EXPECT_EQ(reading(std::string(1 << 20, '9')), std::nullopt);
}

TEST_F(GetSysTest, OnlyAFileThatCannotBeOpenedIsLogged) {
    ASSERT_EQ(kLoggerSettings, 0);
    EXPECT_NE(logOf("/nowhere/counter").find("[STBAml:21] Can't open /nowhere/counter\n"),
              std::string::npos);
    EXPECT_NE(logOf("/").find("Can't open /\n"), std::string::npos);
    EXPECT_EQ(logOf(folder_.write("counter", "none\n")), "");
}

}  // namespace
