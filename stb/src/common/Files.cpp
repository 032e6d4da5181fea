#include "stb/src/common/Files.h"

#include "stb/src/common/FileReplacement.h"
#include "stb/src/common/RegularFile.h"
#include "stb/src/common/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <sys/stat.h>

namespace TR::Utils {
namespace {

constexpr std::size_t kSmallestRoom = 4096;
// A file may claim any size: beyond this the text grows as the bytes really come.
constexpr std::size_t kLargestFirstRoom = std::size_t{64} << 20;

bool removeFile(const std::string& path) {
    return std::remove(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

}  // namespace

bool fileExist(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

std::string getFileContent(const std::string& path) {
    RegularFile file(path);
    if (!file.isOpen()) return {};
    std::string content;
    std::size_t length = 0;
    // One byte more than the file's size, so that its end is met without growing the text.
    std::size_t room = std::clamp(file.sizeHint() + 1, kSmallestRoom, kLargestFirstRoom);
    while (length == content.size()) {
        content.resize(length + room);
        length += file.read(&content[length], room);
        room = content.size();
    }
    content.resize(length);
    return content;
}

std::vector<std::string> getFileContents(const std::string& path, unsigned maximum) {
    return splitLines(getFileContent(path), LineFeeds::Drop, maximum);
}

bool setFileContent(const std::string& path, const std::string& content) {
    if (content.empty()) return removeFile(path);
    return FileReplacement(path).write(content);
}

}  // namespace TR::Utils
