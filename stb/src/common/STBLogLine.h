#pragma once

#include <cstdarg>
#include <cstddef>

/// One console line under construction in a fixed buffer. What does not fit is cut off. Belongs to
/// the thread that builds it.
class STBLogLine {
  public:
    void append(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void append(const char* format, va_list arguments) __attribute__((format(printf, 2, 0)));

    /// The local time of day with milliseconds, then a blank.
    void appendTimeOfDay();

    /// Callers end their messages with a line feed or not; the line gets exactly one either way.
    void dropTrailingLineFeed();

    const char* text() const { return buffer_; }

  private:
    static constexpr std::size_t kCapacity = 1024;

    char buffer_[kCapacity] = "";
    std::size_t length_ = 0;
};
