#pragma once

#include <string>

namespace TR::Utils {

/// The text without the white space (isspace) at its end, or at both ends.
std::string trimRight(std::string text);
std::string trim(std::string text);

}  // namespace TR::Utils
