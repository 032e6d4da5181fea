#pragma once

#include <cstdlib>
#include <ctime>

/// The time zone of a block, in POSIX notation so that no zone files are needed.
class TimeZone {
  public:
    explicit TimeZone(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
    ~TimeZone() {
        unsetenv("TZ");
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
};

constexpr const char* kUtc = "UTC0";
/// One hour ahead of UTC, two in summer.
constexpr const char* kCentralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";
