#include "stb/src/common/STBLogLevel.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr STBLogLevel kAll[] = {STBLogLevel::None, STBLogLevel::Error, STBLogLevel::Warn,
                                STBLogLevel::Info, STBLogLevel::Debug, STBLogLevel::Trace};

}  // namespace

TEST(STBLogLevelTest, LevelsAreNumberedByVerbosity) {
    for (int value = 0; value < 6; ++value) EXPECT_EQ(static_cast<int>(kAll[value]), value);
}

TEST(STBLogLevelTest, EveryLevelHasItsName) {
    const char* const names[] = {"NONE", "ERROR", "WARN", "INFO", "DEBUG", "TRACE"};
    for (std::size_t i = 0; i < 6; ++i) EXPECT_STREQ(stb_log_level::rowOf(kAll[i]).name, names[i]);
}

TEST(STBLogLevelTest, NamesAreReadWithoutRegardToCase) {
    EXPECT_EQ(stb_log_level::fromName("debug"), STBLogLevel::Debug);
    EXPECT_EQ(stb_log_level::fromName("Trace"), STBLogLevel::Trace);
    EXPECT_EQ(stb_log_level::fromName("ERROR"), STBLogLevel::Error);
    EXPECT_EQ(stb_log_level::fromName("wArN"), STBLogLevel::Warn);
    EXPECT_EQ(stb_log_level::fromName("info"), STBLogLevel::Info);
}

TEST(STBLogLevelTest, NoneAndUnknownNamesAreNotLevels) {
    for (const char* text : {"NONE", "none", "", "WARNING", "DEBUG ", "1"})
        EXPECT_FALSE(stb_log_level::fromName(text)) << text;
}

TEST(STBLogLevelTest, SyslogPrioritiesFollowTheTable) {
    const int priorities[] = {5, 3, 4, 6, 7, 8};
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(stb_log_level::rowOf(kAll[i]).syslogPriority, priorities[i]);
    for (const int other : {-1, 6, 9})
        EXPECT_EQ(stb_log_level::rowOf(static_cast<STBLogLevel>(other)).syslogPriority, 5);
}

TEST(STBLogLevelTest, ColoursAndLettersFollowTheTable) {
    const int codes[] = {0, 31, 33, 34, 0, 0};
    const char* const letters[] = {"N", "E", "W", "I", "D", "T"};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(stb_log_level::rowOf(kAll[i]).colourCode, codes[i]);
        EXPECT_STREQ(stb_log_level::rowOf(kAll[i]).letter, letters[i]);
    }
}
