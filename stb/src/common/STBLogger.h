#pragma once

#include "stb/src/common/STBLogLevel.h"

#include <cstdarg>
#include <map>
#include <string>

/// What a caller passes with every message. The texts must outlive the call only.
struct STBLoggerLogParams {
    const char* prefix;
    const char* application;
    const char* category;
    int console;  // 1; without an effect
    int syslog;   // 1; without an effect
};

/// The record under which the daemon's own code logs.
const STBLoggerLogParams& kelmLogParams();

/// Logs one message, on any thread; one that memory does not suffice for is dropped. The
/// application's logger is made on first use. An empty module stands for the base name of the
/// source file.
void STBLogger_log(const STBLoggerLogParams& params, const char* module, STBLogLevel level,
                   int line, const char* file, const char* format, ...)
    __attribute__((format(printf, 6, 7)));

/// The logger of one application, configured by environment variables that begin with its name.
/// Writes each accepted message as one line to stderr or, in syslog mode, to syslog; one that would
/// have to wait for its reader is dropped and counted (STBLogSink.h).
///
/// Constant after construction but for setModulesSTBLogLevel(), which must not run while other
/// threads log. Lines of different threads never interleave.
class STBLogger {
  public:
    /// Borrows the record for the construction only.
    explicit STBLogger(STBLoggerLogParams* params);

    /// Sets each module of a comma-separated list to the level.
    void setModulesSTBLogLevel(const std::string& modules, STBLogLevel level);

    /// Filters one message and hands it to log_print() or log_send_syslog().
    void log(const char* module, STBLogLevel level, int line, const char* file, const char* format,
             va_list arguments) const __attribute__((format(printf, 6, 0)));

    void log_print(const std::string& module, STBLogLevel level, int line, const char* format,
                   va_list arguments) const __attribute__((format(printf, 5, 0)));
    /// syslog adds its own time and process; module and line are not sent.
    void log_send_syslog(const std::string& module, STBLogLevel level, int line, const char* format,
                         va_list arguments) const __attribute__((format(printf, 5, 0)));

  private:
    void readSyslogMode();
    void readLevel();

    bool accepts(const std::string& module, STBLogLevel level) const;
    void logOwn(STBLogLevel level, int line, const char* format, ...) const
        __attribute__((format(printf, 4, 5)));

    std::string application_;
    const std::string prefix_;
    STBLogLevel level_ = STBLogLevel::Info;
    std::map<std::string, STBLogLevel> moduleLevels_;
    bool syslogMode_ = false;
    bool lineNumbers_ = false;
    bool threadId_ = false;
    bool colours_ = false;
};
