#pragma once

#include "stb/src/common/NSTime.h"

#include <string>

#include <sys/time.h>

namespace TR::Utils {

enum class TimeUnit : int { Minute = 1, Hour = 2, Day = 3 };

/// Parses local time by strptime(); 0 when the text does not match. Seconds since the epoch beyond
/// 32 bits saturate.
int getTimestampFromString(const std::string& text, const std::string& format);
timeval getTimevalFromString(const std::string& text, const std::string& format);

/// The start of the minute, hour or day that holds the time, see the source for the time zone.
timeval getBeginningTimeval(const NSTime& time, TimeUnit unit);

}  // namespace TR::Utils
