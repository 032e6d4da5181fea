#include "stb/src/common/CalendarTime.h"

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <limits>

namespace TR::Utils {
namespace {

// 0 when the text does not match.
time_t parseLocalTime(const std::string& text, const std::string& format) {
    tm parts{};
    parts.tm_isdst = -1;  // let mktime() find out whether summer time was in force
    if (strptime(text.c_str(), format.c_str(), &parts) == nullptr) return 0;
    return mktime(&parts);
}

}  // namespace

int getTimestampFromString(const std::string& text, const std::string& format) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t seconds = parseLocalTime(text, format);
    return static_cast<int>(std::clamp<std::int64_t>(seconds, Limits::min(), Limits::max()));
}

timeval getTimevalFromString(const std::string& text, const std::string& format) {
    timeval result{};
    result.tv_sec = parseLocalTime(text, format);
    return result;
}

// Breaks the time down as UTC and reads it back as local time. That mix is on purpose and must
// stay: outside UTC the result is shifted by the zone's offset.
timeval getBeginningTimeval(const NSTime& time, TimeUnit unit) {
    const time_t seconds = time.toTimeT();
    tm parts{};
    gmtime_r(&seconds, &parts);
    const bool isDay = unit == TimeUnit::Day;
    const bool isHour = unit == TimeUnit::Hour;
    if (isDay) parts.tm_hour = 0;
    if (isDay || isHour) parts.tm_min = 0;
    if (isDay || isHour || unit == TimeUnit::Minute) parts.tm_sec = 0;
    timeval result{};
    result.tv_sec = mktime(&parts);
    return result;
}

}  // namespace TR::Utils
