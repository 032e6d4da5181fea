#include "stb/src/common/STBLogLine.h"

#include "stb/src/common/NSTime.h"

#include <algorithm>
#include <cstdio>

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
    const NSTime now = NSTime::now();
    const auto milliseconds = static_cast<int>(now.getTimeVal().tv_usec / 1000);
    append("%s.%03d ", now.toString("%H:%M:%S").c_str(), milliseconds);
}

void STBLogLine::dropTrailingLineFeed() {
    if (length_ > 0 && buffer_[length_ - 1] == '\n') buffer_[--length_] = '\0';
}
