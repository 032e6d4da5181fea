#include "stb/src/common/NSTime.h"

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace {

struct IntervalPart {
    std::int64_t unit;
    const char* singular;
    const char* plural;
};

constexpr IntervalPart kIntervalParts[] = {
    {NSTime::kDay, "day", "days"},          {NSTime::kHour, "hour", "hours"},
    {NSTime::kMinute, "minute", "minutes"}, {NSTime::kSecond, "second", "seconds"},
    {NSTime::kMillisecond, "ms", "ms"},
};

// 0 when the text does not fit the buffer, whose content is then undefined.
std::size_t formatTime(std::string& buffer, const char* format, const tm& local) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // the callers' formats are literals
    return std::strftime(buffer.data(), buffer.size(), format, &local);
#pragma GCC diagnostic pop
}

// False for times whose year does not fit a tm.
bool toLocal(time_t seconds, tm& local) {
    tzset();  // localtime_r() alone would not notice a changed time zone
    return localtime_r(&seconds, &local) != nullptr;
}

}  // namespace

NSTime& NSTime::operator=(const timeval& time) {
    microseconds_ = std::int64_t{time.tv_sec} * kSecond + std::int64_t{time.tv_usec};
    return *this;
}

NSTime NSTime::now() {
    timeval time{};
    gettimeofday(&time, nullptr);
    NSTime result;
    result = time;
    return result;
}

NSTime NSTime::nowRelative() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return {std::int64_t{time.tv_sec} * kSecond + std::int64_t{time.tv_nsec} / 1000};
}

timeval NSTime::getTimeVal() const {
    timeval time{};
    time.tv_sec = toTimeT();
    time.tv_usec = static_cast<suseconds_t>(microseconds_ % kSecond);
    return time;
}

std::string NSTime::toString(const char* format) const {
    tm local{};
    if (!toLocal(toTimeT(), local)) return {};
    std::string text(5 * std::strlen(format), '\0');
    text.resize(formatTime(text, format, local));
    return text;
}

std::string NSTime::dump() const {
    if (microseconds_ == 0) return "EMPTY";
    tm local{};
    if (!toLocal(toTimeT(), local)) return {};
    char calendar[255] = "";
    std::strftime(calendar, sizeof calendar, "%Y-%m-%d %H:%M:%S", &local);
    char text[sizeof calendar + 16] = "";
    std::snprintf(text, sizeof text, "%s.%03d", calendar,
                  static_cast<int>(microseconds_ % kSecond / kMillisecond));
    return text;
}

std::string NSTime::printInterval() const {
    if (microseconds_ == 0) return "0";
    std::string text;
    std::int64_t rest = microseconds_;
    for (const IntervalPart& part : kIntervalParts) {
        const std::int64_t count = rest / part.unit;
        rest %= part.unit;
        if (count != 0) {
            text += text.empty() ? "" : ", ";
            text += std::to_string(count) + (count < 2 ? part.singular : part.plural);
        }
    }
    // Microseconds matter only in a value that has nothing bigger.
    return text.empty() ? std::to_string(microseconds_) + "us" : text;
}
