#include "stb/src/common/STBLogLevel.h"

#include <gtest/gtest.h>

#include <string>

TEST(STBLogLevelTest, LevelsAreNumberedByVerbosityAndFollowTheTable) {
    const struct {
        STBLogLevel level;
        const char* name;
        const char* letter;
        int colourCode, syslogPriority;
    } rows[] = {
        {STBLogLevel::None, "NONE", "N", 0, 5},   {STBLogLevel::Error, "ERROR", "E", 31, 3},
        {STBLogLevel::Warn, "WARN", "W", 33, 4},  {STBLogLevel::Info, "INFO", "I", 34, 6},
        {STBLogLevel::Debug, "DEBUG", "D", 0, 7}, {STBLogLevel::Trace, "TRACE", "T", 0, 8},
    };
    int value = 0;
    for (const auto& [level, name, letter, colourCode, syslogPriority] : rows) {
        EXPECT_EQ(static_cast<int>(level), value++);
        EXPECT_STREQ(stb_log_level::rowOf(level).name, name);
        EXPECT_STREQ(stb_log_level::rowOf(level).letter, letter);
        EXPECT_EQ(stb_log_level::rowOf(level).colourCode, colourCode);
        EXPECT_EQ(stb_log_level::rowOf(level).syslogPriority, syslogPriority);
    }
    for (const int other : {-1, 6, 9})
        EXPECT_EQ(stb_log_level::rowOf(static_cast<STBLogLevel>(other)).syslogPriority, 5);
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
