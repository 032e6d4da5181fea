// Takes the place of the C library's syslog calls in the test program and writes them to stderr.
#include <cstdarg>
#include <cstdio>

#include <syslog.h>

namespace {

__attribute__((format(printf, 2, 0))) void print(int priority, const char* format,
                                                 va_list arguments) {
    std::fprintf(stderr, "syslog %d: ", priority);
    std::vfprintf(stderr, format, arguments);
    std::fputc('\n', stderr);
}

}  // namespace

extern "C" {

void openlog(const char* ident, int option, int facility) {
    std::fprintf(stderr, "openlog(%s, %d, %d)\n", ident == nullptr ? "null" : ident, option,
                 facility);
}

__attribute__((format(printf, 2, 0))) void vsyslog(int priority, const char* format,
                                                   va_list arguments) {
    print(priority, format, arguments);
}

/// What a fortified build calls instead.
__attribute__((format(printf, 3, 0))) void __vsyslog_chk(  // NOLINT(bugprone-reserved-identifier)
    int priority, int /*flag*/, const char* format, va_list arguments) {
    print(priority, format, arguments);
}

}  // extern "C"
