#pragma once

#include "stb/src/common/NSTime.h"

#include <string>
#include <string_view>
#include <vector>

#include <sys/time.h>

// Files, commands, texts and calendar times, shared by the store, the providers and the bus side.
// Nothing here logs, keeps state or takes a lock; any thread may call. Failures show as empty
// results. Texts are bytes, not characters: they may hold NUL and invalid UTF-8.
namespace TR {
namespace Utils {

enum class TimeUnit : int { Minute = 1, Hour = 2, Day = 3 };

// True for anything that stat() finds, a folder included.
bool fileExist(const std::string& path);

// The whole regular file (also of /proc and /sys); a folder, FIFO or device gives the empty text.
std::string getFileContent(const std::string& path);

// The file's lines without their line feeds; at most `maximum` of them unless it is 0.
std::vector<std::string> getFileContents(const std::string& path, unsigned maximum = 0);

// Replaces the file's content in place; the empty content deletes the file. True when the file now
// holds the content, or is gone. After a failed write (full disk) it holds what it held before.
bool setFileContent(const std::string& path, const std::string& content);

// What the shell command prints on standard output, whatever its exit status.
std::string getCmdOutput(const std::string& command);

// The same as lines, each with its line feed.
std::vector<std::string> processPipe(const std::string& command);

// Runs the shell command to its end, whatever comes of it; what it prints goes where the own output
// goes. By system(), in a process of its own, so that the signals of this one are left alone.
void runCommand(const std::string& command);

std::string toLowerString(const std::string& text);
std::string toUpperString(const std::string& text);
void toLower(std::string& text);
void toUpper(std::string& text);

// Makes the text safe inside a JSON string. Every byte above 126 is escaped by itself, so a UTF-8
// character comes out as several escapes, on purpose.
std::string escapeForJson(std::string_view text);

// Parses local time by strptime(); 0 when the text does not match. Seconds since the epoch beyond
// 32 bits saturate.
int getTimestampFromString(const std::string& text, const std::string& format);
timeval getTimevalFromString(const std::string& text, const std::string& format);

// The start of the minute, hour or day that holds the time, see the source for the time zone.
timeval getBeginningTimeval(const NSTime& time, TimeUnit unit);

}  // namespace Utils

// The system logs joined, oldest first; the caller frees the text with free(). Null when there is
// no log file.
char* getLogs();

// The content of /proc/meminfo.
std::string readMemInfo();

}  // namespace TR
