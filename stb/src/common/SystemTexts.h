#pragma once

#include <cstddef>
#include <string>

/// Texts that the system keeps. Nothing here keeps state or takes a lock; any thread may call.
namespace TR {

/// Bytes. Far above any real log.
constexpr std::size_t kLargestLog = std::size_t{64} << 20;

/// Joins the rotated files of one log, <base>.300 down to <base>.0, and then <base> itself into one
/// NUL-terminated text that the caller frees with free(). At most the newest \p most bytes are
/// read; a hole at the beginning of a file is skipped. Null when no file can be opened or memory is
/// short. The text may hold NULs: `length` is its true length.
char* joinLogFiles(const std::string& base, std::size_t& length, std::size_t most = kLargestLog);

/// The system logs joined, oldest first; as joinLogFiles().
char* getLogs(std::size_t& length);
char* getLogs();

/// The content of /proc/meminfo.
std::string readMemInfo();

}  // namespace TR
