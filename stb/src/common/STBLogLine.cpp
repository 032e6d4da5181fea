#include "stb/src/common/STBLogLine.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include <sys/time.h>

void STBLogLine::append(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    append(format, arguments);
    va_end(arguments);
}

void STBLogLine::append(const char* format, va_list arguments) {
    const std::size_t room = kCapacity - length_;
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): started by the caller
    const int wanted = std::vsnprintf(buffer_ + length_, room, format, arguments);
    if (wanted > 0) length_ += std::min(static_cast<std::size_t>(wanted), room - 1);
    buffer_[length_] = '\0';
}

void STBLogLine::appendTimeOfDay() {
    timeval now{};
    gettimeofday(&now, nullptr);
    const time_t seconds = now.tv_sec;
    tm local{};
    localtime_r(&seconds, &local);
    char clock[16] = "";
    std::strftime(clock, sizeof clock, "%H:%M:%S", &local);
    append("%s.%03d ", clock, static_cast<int>(now.tv_usec / 1000));
}

void STBLogLine::dropTrailingLineFeed() {
    if (length_ > 0 && buffer_[length_ - 1] == '\n') buffer_[--length_] = '\0';
}
