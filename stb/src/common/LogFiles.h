#pragma once

#include <string>

namespace TR {

// Joins the rotated files of one log, <base>.300 down to <base>.0, and then <base> itself into one
// NUL-terminated text that the caller frees with free(). Null when none of them exists.
char* joinLogFiles(const std::string& base);

}  // namespace TR
