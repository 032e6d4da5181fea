#include "stb/src/common/STBLogLevel.h"

#include "stb/src/common/Text.h"

namespace {

struct Row {
    STBLogLevel level;
    const char* name;
    const char* letter;
    int colourCode;
    int syslogPriority;
};

constexpr int kNoColour = 0;
constexpr int kRed = 31;
constexpr int kYellow = 33;
constexpr int kBlue = 34;

// TRACE is one past the last syslog severity on purpose; syslog takes it as another facility's.
constexpr Row kRows[] = {
    {STBLogLevel::Error, "ERROR", "E", kRed, 3},
    {STBLogLevel::Warn, "WARN", "W", kYellow, 4},
    {STBLogLevel::Info, "INFO", "I", kBlue, 6},
    {STBLogLevel::Debug, "DEBUG", "D", kNoColour, 7},
    {STBLogLevel::Trace, "TRACE", "T", kNoColour, 8},
};

constexpr Row kOther{STBLogLevel::None, "NONE", "N", kNoColour, 5};

const Row& rowOf(STBLogLevel level) {
    for (const Row& row : kRows)
        if (row.level == level) return row;
    return kOther;
}

}  // namespace

namespace stb_log_level {

const char* name(STBLogLevel level) {
    return rowOf(level).name;
}

std::optional<STBLogLevel> fromName(const std::string& text) {
    const std::string upper = TR::Utils::toUpperString(text);
    for (const Row& row : kRows)
        if (upper == row.name) return row.level;
    return std::nullopt;
}

const char* letter(STBLogLevel level) {
    return rowOf(level).letter;
}

int colourCode(STBLogLevel level) {
    return rowOf(level).colourCode;
}

int syslogPriority(STBLogLevel level) {
    return rowOf(level).syslogPriority;
}

}  // namespace stb_log_level
