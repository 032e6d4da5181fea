#include "trctl/Rates.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace trctl {

namespace {

std::optional<std::uint64_t> wholeNumber(const std::string& text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

// More digits than a person reads would only show how the two clocks drift.
double rounded(double rate) {
    constexpr double kWholeFrom = 100;
    if (rate >= kWholeFrom) return std::round(rate);
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", rate);
    return std::strtod(text, nullptr);
}

}  // namespace

bool Rates::isCounter(const std::string& address) {
    constexpr std::string_view kEnd = "Stats";
    const std::size_t point = address.rfind('.');
    return point != std::string::npos && point >= kEnd.size() &&
           address.compare(point - kEnd.size(), kEnd.size(), kEnd) == 0;
}

std::optional<double> Rates::of(const std::string& address, const std::string& before,
                                const std::string& after, double secondsBefore,
                                double secondsAfter) {
    const auto first = wholeNumber(before);
    const auto last = wholeNumber(after);
    if (!isCounter(address) || !first || !last) return std::nullopt;
    const auto seen = changed_.try_emplace(address, secondsAfter).first;
    const double since = isSlow_ ? secondsBefore : seen->second;
    seen->second = secondsAfter;
    if (*last < *first || since >= secondsAfter) return std::nullopt;
    return rounded(static_cast<double>(*last - *first) / (secondsAfter - since));
}

}  // namespace trctl
