#include "stb/src/amlogic/STBAml.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <limits>
#include <optional>
#include <string>

namespace {

// Read when the first message makes the logger, in whichever test that is.
const int kLoggerSettings = setenv("KELM_LOG_LEVEL", "error", 1) +
                            setenv("KELM_LOG_LINENUM", "1", 1) + unsetenv("KELM_LOG_SYSLOG");

class GetSysTest : public ::testing::Test {
  protected:
    ~GetSysTest() override { std::remove(path_.c_str()); }

    std::optional<int> reading(const std::string& content) {
        std::ofstream(path_, std::ios::binary) << content;
        return STBAml::getSys<int>(path_);
    }

    static std::string test() {
        return ::testing::UnitTest::GetInstance()->current_test_info()->name();
    }

    const std::string path_ = ::testing::TempDir() + "counter." + test();
};

TEST_F(GetSysTest, TheNumberOfTheFileIsRead) {
    EXPECT_EQ(reading("42\n"), 42);
    EXPECT_EQ(reading("0"), 0);
    EXPECT_EQ(reading("-3\n"), -3);
    EXPECT_EQ(reading("+3\n"), 3);
}

TEST_F(GetSysTest, BlanksBeforeAndTextBehindTheNumberAreIgnored) {
    EXPECT_EQ(reading(" \t\n 42 errors\n"), 42);
    EXPECT_EQ(reading("42abc"), 42);
    EXPECT_EQ(reading("0x10"), 0);
    EXPECT_EQ(reading("1\n2\n"), 1);
}

TEST_F(GetSysTest, TheWholeRangeOfTheTypeIsRead) {
    EXPECT_EQ(reading("2147483647\n"), std::numeric_limits<int>::max());
    EXPECT_EQ(reading("-2147483648\n"), std::numeric_limits<int>::min());
}

TEST_F(GetSysTest, ANumberOutOfRangeGivesNoReading) {
    for (const char* text : {"2147483648", "-2147483649", "4294967295", "99999999999999999999"})
        EXPECT_EQ(reading(text), std::nullopt) << text;
}

TEST_F(GetSysTest, AFileWithoutANumberGivesNoReading) {
    for (const char* text : {"", "\n", "none\n", "-", "discontinuities 5", "\xff\xfe"})
        EXPECT_EQ(reading(text), std::nullopt) << text;
    EXPECT_EQ(reading(std::string("\0005\n", 3)), std::nullopt);
    EXPECT_EQ(reading(std::string(1 << 20, '9')), std::nullopt);
}

TEST_F(GetSysTest, AFileThatCannotBeOpenedGivesNoReadingAndLogsAnError) {
    ASSERT_EQ(kLoggerSettings, 0);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(STBAml::getSys<int>("/nowhere/counter"), std::nullopt);
    const std::string log = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("[STBAml:21] Can't open /nowhere/counter\n"), std::string::npos) << log;
}

TEST_F(GetSysTest, AFolderInItsPlaceGivesNoReading) {
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(STBAml::getSys<int>("/"), std::nullopt);
    const std::string log = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("Can't open /\n"), std::string::npos) << log;
}

TEST_F(GetSysTest, AFileWithoutANumberIsNotLogged) {
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(reading("none\n"), std::nullopt);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

}  // namespace
