#pragma once

#include <string>
#include <vector>

/// Whole files as texts. Nothing here logs, keeps state or takes a lock; any thread may call. A
/// failure shows as an empty result. Texts are bytes: they may hold NUL and invalid UTF-8.
namespace TR::Utils {

/// True for anything that stat() finds, a folder included.
bool fileExist(const std::string& path);

/// The whole regular file (also of /proc and /sys); a folder, FIFO or device gives the empty text.
std::string getFileContent(const std::string& path);

/// The file's lines without their line feeds; at most `maximum` of them unless it is 0.
std::vector<std::string> getFileContents(const std::string& path, unsigned maximum = 0);

/// Replaces the file's content in place; the empty content deletes the file. True when the file now
/// holds the content, or is gone. After a failed write (full disk) it holds what it held before.
bool setFileContent(const std::string& path, const std::string& content);

}  // namespace TR::Utils
