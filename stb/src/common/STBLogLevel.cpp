#include "stb/src/common/STBLogLevel.h"

#include "stb/src/common/Text.h"

#include <cstddef>
#include <iterator>

namespace stb_log_level {
namespace {

constexpr int kNoColour = 0;
constexpr int kRed = 31;
constexpr int kYellow = 33;
constexpr int kBlue = 34;

// By the level's number. TRACE is one past the last syslog severity on purpose; syslog takes it as
// another facility's.
constexpr Row kRows[] = {
    {"NONE", "N", kNoColour, 5}, {"ERROR", "E", kRed, 3},      {"WARN", "W", kYellow, 4},
    {"INFO", "I", kBlue, 6},     {"DEBUG", "D", kNoColour, 7}, {"TRACE", "T", kNoColour, 8},
};

}  // namespace

const Row& rowOf(STBLogLevel level) {
    const auto number = static_cast<std::size_t>(level);
    return kRows[number < std::size(kRows) ? number : 0];
}

std::optional<STBLogLevel> fromName(const std::string& text) {
    const std::string upper = TR::Utils::toUpperString(text);
    for (std::size_t number = 1; number < std::size(kRows); ++number)
        if (upper == kRows[number].name) return static_cast<STBLogLevel>(number);
    return std::nullopt;
}

}  // namespace stb_log_level
