#include "stb/src/common/Files.h"

#include "stb/src/common/RegularFile.h"
#include "stb/src/common/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include <sys/stat.h>

namespace TR::Utils {
namespace {

constexpr std::int64_t kSmallestRoom = 4096;
// A file may claim any size; beyond this the text grows with the bytes that are read.
constexpr std::int64_t kLargestFirstRoom = std::int64_t{1} << 20;

bool hasLines(const std::string& text, unsigned lines) {
    const auto found = std::count(text.begin(), text.end(), '\n');
    return lines != 0 && static_cast<std::uint64_t>(found) >= lines;
}

// At most `bytes` bytes and, unless `lines` is 0, little more than that many lines.
std::string readStart(RegularFile& file, std::size_t bytes, unsigned lines = 0) {
    std::string content;
    std::size_t length = 0;
    const std::int64_t size = lines == 0 ? file.sizeHint() : kSmallestRoom;
    // One byte more than the file's size, so that its end is met without growing the text.
    auto room = static_cast<std::size_t>(std::clamp(size, kSmallestRoom, kLargestFirstRoom) + 1);
    while (file.isOpen() && length == content.size() && length < bytes &&
           !hasLines(content, lines)) {
        content.resize(std::min(length + room, bytes));
        length += file.read(&content[length], content.size() - length);
        room = content.size();
    }
    content.resize(length);
    return content;
}

bool removeFile(const std::string& path) {
    return std::remove(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

// A link counts, a dangling one too.
bool isFree(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) != 0 && errno == ENOENT;
}

}  // namespace

bool fileExist(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

std::string getFileContent(const std::string& path, std::size_t bytes) {
    RegularFile file(path);
    return readStart(file, bytes);
}

std::vector<std::string> getFileContents(const std::string& path, unsigned maximum,
                                         std::size_t bytes) {
    RegularFile file(path);
    return splitLines(readStart(file, bytes, maximum), LineFeeds::Drop, maximum);
}

bool setFileContent(const std::string& path, const std::string& content) {
    if (content.empty()) return removeFile(path);
    if (content.size() > kLargestSetting) return false;
    const bool isNew = isFree(path);
    RegularFile file(path, RegularFile::Use::Replace);
    if (!file.isOpen()) return false;
    const std::string old = readStart(file, kLargestSetting);
    if (file.replace(content)) return true;
    // The old content fits: its room was freed just now.
    isNew ? removeFile(path) : RegularFile(path, RegularFile::Use::Replace).replace(old);
    return false;
}

}  // namespace TR::Utils
