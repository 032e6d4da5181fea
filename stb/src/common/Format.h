#pragma once

#include <string>

namespace TR::Utils {

/// printf into a string of exactly the needed length; empty when the format cannot be carried out.
std::string format(const char* text, ...) __attribute__((format(printf, 1, 2)));

}  // namespace TR::Utils
