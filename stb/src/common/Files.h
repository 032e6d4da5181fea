#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Whole files as texts. Nothing here logs, keeps state or takes a lock; any thread may call. A
/// failure shows as an empty result. Texts are bytes: they may hold NUL and invalid UTF-8. What a
/// file holds beyond a bound is not read, whatever size it has or claims.
namespace TR::Utils {

/// Bytes. Far above anything real, and little enough for the box's memory.
constexpr std::size_t kLargestFile = std::size_t{8} << 20;
constexpr std::size_t kLargestSetting = std::size_t{1} << 20;

/// True for anything that stat() finds, a folder included.
bool fileExist(const std::string& path);

/// The regular file (also of /proc and /sys), at most its first `bytes` bytes; a folder, FIFO or
/// device gives the empty text.
std::string getFileContent(const std::string& path, std::size_t bytes = kLargestFile);

/// The file's lines without their line feeds; at most `maximum` of them unless it is 0.
std::vector<std::string> getFileContents(const std::string& path, unsigned maximum = 0,
                                         std::size_t bytes = kLargestFile);

/// Replaces the file's content in place; the empty content deletes the file. True when the file now
/// holds the content, or is gone. A content above kLargestSetting, which would be read back cut, is
/// refused. After a failed write (full disk) the file holds its old content again, at most
/// kLargestSetting of it.
bool setFileContent(const std::string& path, const std::string& content);

}  // namespace TR::Utils
