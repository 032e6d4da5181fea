#include "stb/src/common/Format.h"

#include <cstdarg>
#include <cstdio>

namespace TR::Utils {

namespace {

// Addresses and hardware addresses fit; only a longer result is formatted a second time.
constexpr std::size_t kFirstTrySize = 512;

}  // namespace

std::string format(const char* text, ...) {
    char buffer[kFirstTrySize];
    std::va_list arguments;
    va_start(arguments, text);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(buffer, sizeof buffer, text, arguments);
    va_end(arguments);
    std::string result;
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof buffer) {
        result.assign(buffer, static_cast<std::size_t>(length));
    } else if (length >= 0) {
        result.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(result.data(), result.size(), text, again);
        result.resize(static_cast<std::size_t>(length));
    }
    va_end(again);
    return result;
}

}  // namespace TR::Utils
