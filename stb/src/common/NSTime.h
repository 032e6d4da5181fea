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
    // Microseconds.
    static constexpr std::int64_t kMillisecond = 1000;
    static constexpr std::int64_t kSecond = 1000 * kMillisecond;
    static constexpr std::int64_t kMinute = 60 * kSecond;
    static constexpr std::int64_t kHour = 60 * kMinute;
    static constexpr std::int64_t kDay = 24 * kHour;

    NSTime() = default;
    /// Implicit on purpose: durations are written as plain microseconds everywhere.
    NSTime(long long microseconds) : microseconds_(microseconds) {}
    NSTime& operator=(const timeval& time);

    static NSTime now();
    static NSTime nowRelative();

    NSTime& operator+=(long long microseconds) { return *this = *this + microseconds; }
    NSTime& operator-=(long long microseconds) { return *this = *this - microseconds; }

    void addDays(int days) { microseconds_ += days * kDay; }
    void addHours(int hours) { microseconds_ += hours * kHour; }
    void addMinutes(int minutes) { microseconds_ += minutes * kMinute; }
    void addSeconds(int seconds) { microseconds_ += seconds * kSecond; }

    /// Whole seconds, truncated towards zero.
    time_t toTimeT() const { return static_cast<time_t>(microseconds_ / kSecond); }
    std::int64_t toInt64() const { return microseconds_; }
    /// Both parts truncated towards zero: a negative time has negative microseconds.
    timeval getTimeVal() const;

    /// strftime() text in local time; empty when it is longer than five times the format.
    std::string toString(const char* format) const;
    /// For logs: 2020-01-31 12:00:05.042 in local time, EMPTY for 0.
    std::string dump() const;
    /// The value as a duration: 1day, 2hours, 3minutes, 4seconds, 5ms.
    std::string printInterval() const;

    friend bool operator>(const NSTime& a, const NSTime& b) { return b < a; }
    friend bool operator>=(const NSTime& a, const NSTime& b) { return !(a < b); }
    friend bool operator<(const NSTime& a, const NSTime& b) { return a.toInt64() < b.toInt64(); }
    friend bool operator<=(const NSTime& a, const NSTime& b) { return !(b < a); }
    friend bool operator==(const NSTime& a, const NSTime& b) { return a.toInt64() == b.toInt64(); }
    friend bool operator!=(const NSTime& a, const NSTime& b) { return !(a == b); }

    friend NSTime operator+(const NSTime& a, long long b) { return a.toInt64() + b; }
    friend NSTime operator-(const NSTime& a, long long b) { return a.toInt64() - b; }
    friend NSTime operator+(const NSTime& a, const NSTime& b) { return a + b.toInt64(); }
    friend NSTime operator-(const NSTime& a, const NSTime& b) { return a - b.toInt64(); }

  private:
    std::int64_t microseconds_ = 0;
};
