#pragma once

#include <string>
#include <string_view>

namespace TR::Utils {

/// Makes the text safe inside a JSON string. Every byte above 126 is escaped by itself, so a UTF-8
/// character comes out as several escapes, on purpose.
std::string escapeForJson(std::string_view text);

}  // namespace TR::Utils
