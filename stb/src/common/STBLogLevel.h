#pragma once

#include <optional>
#include <string>

/// The severity of a message, and the verbosity of a module: a message is written when its level is
/// not above its module's.
enum class STBLogLevel : int { None = 0, Error, Warn, Info, Debug, Trace };

/// How each level shows. Pure; values outside the enumeration give neutral answers.
namespace stb_log_level {

const char* name(STBLogLevel level);

/// Without regard to case; nothing for an unknown name and for NONE: nobody silences a logger by
/// its environment.
std::optional<STBLogLevel> fromName(const std::string& text);

/// The one-letter tag and the terminal colour code of coloured lines.
const char* letter(STBLogLevel level);
int colourCode(STBLogLevel level);

int syslogPriority(STBLogLevel level);

}  // namespace stb_log_level
