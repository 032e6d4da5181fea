#pragma once

#include <string>

/// Texts that the system keeps. Nothing here keeps state or takes a lock; any thread may call.
namespace TR {

/// Joins the rotated files of one log, <base>.300 down to <base>.0, and then <base> itself into one
/// NUL-terminated text that the caller frees with free(). Null when none of them exists.
char* joinLogFiles(const std::string& base);

/// The system logs joined, oldest first; the caller frees the text with free(). Null when there is
/// no log file.
char* getLogs();

/// The content of /proc/meminfo.
std::string readMemInfo();

}  // namespace TR
