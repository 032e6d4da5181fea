#pragma once

#include "stb/src/common/STBLogger.h"

#include <string>

namespace cwmp {

/// One line of the log, of which the CWMP client sees nothing. Cut where it would be too long.
inline void warn(const std::string& text) {
    STBLogger_log(kelmLogParams(), "cwmp", STBLogLevel::Warn, 0, "", "%s", text.c_str());
}

}  // namespace cwmp
