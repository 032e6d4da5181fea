#pragma once

#include <cstdint>
#include <string>

#include <sys/time.h>

/// A point in time or a duration, in microseconds. As a point it counts from the Unix epoch (now())
/// or from an arbitrary fixed start (nowRelative()); which one a value holds is the caller's
/// business. A plain value: copies are independent, nothing is shared, every operation is
/// reentrant.
class NSTime {
  public:
    NSTime() = default;
    /// Implicit on purpose: durations are written as plain microseconds everywhere.
    NSTime(long long microseconds) : microseconds_(microseconds) {}
    NSTime(const NSTime&) = default;
    NSTime& operator=(const NSTime&) = default;
    NSTime& operator=(const timeval& time);

    static NSTime now();
    static NSTime nowRelative();

    NSTime& operator+=(long long microseconds);
    NSTime& operator-=(long long microseconds);

    void addDays(int days);
    void addHours(int hours);
    void addMinutes(int minutes);
    void addSeconds(int seconds);

    /// Whole seconds, truncated towards zero.
    time_t toTimeT() const;
    std::int64_t toInt64() const { return microseconds_; }
    /// Both parts truncated towards zero: a negative time has negative microseconds.
    timeval getTimeVal() const;

    /// strftime() text in local time; empty when it is longer than five times the format.
    std::string toString(const char* format) const;
    /// For logs: 2020-01-31 12:00:05.042 in local time, EMPTY for 0.
    std::string dump() const;
    /// The value as a duration: 1day, 2hours, 3minutes, 4seconds, 5ms.
    std::string printInterval() const;

  private:
    std::int64_t microseconds_ = 0;
};

inline bool operator>(const NSTime& a, const NSTime& b) {
    return a.toInt64() > b.toInt64();
}
inline bool operator>=(const NSTime& a, const NSTime& b) {
    return a.toInt64() >= b.toInt64();
}
inline bool operator<(const NSTime& a, const NSTime& b) {
    return a.toInt64() < b.toInt64();
}
inline bool operator<=(const NSTime& a, const NSTime& b) {
    return a.toInt64() <= b.toInt64();
}
inline bool operator==(const NSTime& a, const NSTime& b) {
    return a.toInt64() == b.toInt64();
}
inline bool operator!=(const NSTime& a, const NSTime& b) {
    return a.toInt64() != b.toInt64();
}

NSTime operator+(const NSTime& time, long long microseconds);
NSTime operator-(const NSTime& time, long long microseconds);
NSTime operator+(const NSTime& a, const NSTime& b);
NSTime operator-(const NSTime& a, const NSTime& b);
