#pragma once

#include <cstdarg>
#include <string>

/// Where the lines of the log go. Nobody waits for a reader that has stalled or is gone: a line
/// that cannot be written at once is dropped, and the number of dropped lines comes before the next
/// line that can be written. Any thread may call; one process-wide mutex keeps the lines apart.
namespace stb_log_sink {

/// Writes the line and a line feed to standard error.
void writeLine(const std::string& line);
/// The same; cut at the length of an STBLogLine.
void printLine(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Hands the message to `vsyslog`.
void sendSyslog(int priority, const char* format, va_list arguments)
    __attribute__((format(printf, 2, 0)));

}  // namespace stb_log_sink
