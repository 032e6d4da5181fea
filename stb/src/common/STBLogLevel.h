#pragma once

#include <optional>
#include <string>

/// The severity of a message, and the verbosity of a module: a message is written when its level is
/// not above its module's.
enum class STBLogLevel : int { None = 0, Error, Warn, Info, Debug, Trace };

namespace stb_log_level {

/// How a level shows: its name, its one-letter tag and terminal colour code in coloured lines, its
/// syslog priority.
struct Row {
    const char* name;
    const char* letter;
    int colourCode;
    int syslogPriority;
};

/// Values outside the enumeration show as NONE.
const Row& rowOf(STBLogLevel level);

/// Without regard to case; nothing for an unknown name and for NONE, since no logger is silenced by
/// its environment.
std::optional<STBLogLevel> fromName(const std::string& text);

}  // namespace stb_log_level
