#include "stb/src/common/STBLogger.h"

#include "stb/src/common/STBLogLine.h"
#include "stb/src/common/STBLogSink.h"
#include "stb/src/common/STBLoggerContainer.h"

#include <cstdlib>
#include <new>
#include <sstream>

#include <pthread.h>
#include <syslog.h>

namespace {

constexpr const char* kSource = "src/common/STBLogger";
constexpr int kUnknownLevelLine = 105;  // a fixed number: it does not follow the source
constexpr char kEscape = 27;
constexpr int kColourReset = 0;

struct ModuleVariable {
    const char* suffix;
    STBLogLevel level;
};

constexpr ModuleVariable kModuleVariables[] = {
    {"_LOG_WARN_MODULES", STBLogLevel::Warn},
    {"_LOG_INFO_MODULES", STBLogLevel::Info},
    {"_LOG_DEBUG_MODULES", STBLogLevel::Debug},
    {"_LOG_TRACE_MODULES", STBLogLevel::Trace},
};

std::string textOrEmpty(const char* text) {
    return text == nullptr ? "" : text;
}

const char* variable(const std::string& application, const char* suffix) {
    // Nothing in the daemon changes the environment.
    return std::getenv((application + suffix).c_str());  // NOLINT(concurrency-mt-unsafe)
}

bool isSwitchedOn(const std::string& application, const char* suffix) {
    const std::string value = textOrEmpty(variable(application, suffix));
    return value == "1" || value == "y";
}

std::string baseName(const std::string& file) {
    const std::size_t slash = file.rfind('/');
    const std::string name = slash == std::string::npos ? file : file.substr(slash + 1);
    return name.substr(0, name.rfind('.'));
}

std::string colourEscape(int colour) {
    return kEscape + ("[" + std::to_string(colour) + "m");
}

}  // namespace

const STBLoggerLogParams& kelmLogParams() {
    static constexpr STBLoggerLogParams kParams{"    ", "KELM", "debug", 1, 1};
    return kParams;
}

void STBLogger_log(const STBLoggerLogParams& params, const char* module, STBLogLevel level,
                   int line, const char* file, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    try {
        const STBLogger& logger = STBLoggerContainer::instance().loggerFor(params);
        logger.log(module, level, line, file, format, arguments);
    } catch (const std::bad_alloc&) {
        // A thread that reports its end for want of memory must not end the process instead.
    }
    va_end(arguments);
}

STBLogger::STBLogger(STBLoggerLogParams* params)
    : application_(textOrEmpty(params->application)), prefix_(textOrEmpty(params->prefix)) {
    readSyslogMode();
    readLevel();
    lineNumbers_ = isSwitchedOn(application_, "_LOG_LINENUM");
    threadId_ = isSwitchedOn(application_, "_LOG_THREAD_ID");
    colours_ = isSwitchedOn(application_, "_LOG_USE_COLORS");
    for (const ModuleVariable& row : kModuleVariables)
        setModulesSTBLogLevel(textOrEmpty(variable(application_, row.suffix)), row.level);
    logOwn(STBLogLevel::Info, __LINE__,
           "Logger for application \"%s\" was successfully initialized (level:%s)",
           application_.c_str(), stb_log_level::rowOf(level_).name);
}

void STBLogger::readSyslogMode() {
    syslogMode_ = isSwitchedOn(application_, "_LOG_SYSLOG");
    if (!syslogMode_) return;
    if (application_.empty()) application_ = "UNKNOWN";
    openlog(nullptr, LOG_CONS | LOG_PID, LOG_USER);
}

void STBLogger::readLevel() {
    const char* const wanted = variable(application_, "_LOG_LEVEL");
    if (wanted == nullptr) return;
    const auto level = stb_log_level::fromName(wanted);
    level_ = level.value_or(STBLogLevel::Info);
    if (!level) {
        logOwn(STBLogLevel::Error, kUnknownLevelLine, "Unknown log level: '%s', setting to '%s'",
               wanted, stb_log_level::rowOf(level_).name);
    }
}

void STBLogger::setModulesSTBLogLevel(const std::string& modules, STBLogLevel level) {
    std::istringstream list(modules);
    for (std::string module; std::getline(list, module, ',');) {
        if (module.empty()) continue;
        moduleLevels_[module] = level;
        logOwn(STBLogLevel::Info, __LINE__, "Setting loglevel for module '%s' to '%s'",
               module.c_str(), stb_log_level::rowOf(level).name);
    }
}

void STBLogger::log(const char* module, STBLogLevel level, int line, const char* file,
                    const char* format, va_list arguments) const {
    std::string name = textOrEmpty(module);
    if (name.empty()) name = baseName(textOrEmpty(file));
    if (!accepts(name, level)) return;
    if (syslogMode_)
        log_send_syslog(name, level, line, format, arguments);
    else
        log_print(name, level, line, format, arguments);
}

bool STBLogger::accepts(const std::string& module, STBLogLevel level) const {
    const auto own = moduleLevels_.find(module);
    const STBLogLevel effective = own == moduleLevels_.end() ? level_ : own->second;
    return effective != STBLogLevel::None && effective >= level;
}

void STBLogger::log_print(const std::string& module, STBLogLevel level, int line,
                          const char* format, va_list arguments) const {
    const stb_log_level::Row& row = stb_log_level::rowOf(level);
    STBLogLine text;
    text.append("%s", prefix_.c_str());
    text.appendTimeOfDay();
    text.append("%s ", colours_ ? row.letter : row.name);
    if (threadId_) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): an id that is only printed
        text.append("%p ", reinterpret_cast<void*>(pthread_self()));
    }
    if (lineNumbers_ && line > 0)
        text.append("[%s:%d] ", module.c_str(), line);
    else if (!module.empty())
        text.append("[%s] ", module.c_str());
    text.append(format, arguments);
    text.dropTrailingLineFeed();
    // The escapes stand outside the line's buffer, so that a long message cannot cut the reset off
    // and leave the terminal coloured.
    stb_log_sink::writeLine(colours_ ? colourEscape(row.colourCode) + text.text() +
                                           colourEscape(kColourReset)
                                     : text.text());
}

void STBLogger::log_send_syslog(const std::string&, STBLogLevel level, int, const char* format,
                                va_list arguments) const {
    stb_log_sink::sendSyslog(stb_log_level::rowOf(level).syslogPriority, format, arguments);
}

void STBLogger::logOwn(STBLogLevel level, int line, const char* format, ...) const {
    va_list arguments;
    va_start(arguments, format);
    log("", level, line, kSource, format, arguments);
    va_end(arguments);
}
