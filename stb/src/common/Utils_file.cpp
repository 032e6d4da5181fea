#include "stb/src/common/Lines.h"
#include "stb/src/common/RegularFile.h"
#include "stb/src/common/Utils.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace TR {
namespace Utils {
namespace {

constexpr std::size_t kSmallestRoom = 4096;
// A file may claim any size: beyond this the text grows as the bytes really come.
constexpr std::size_t kLargestFirstRoom = std::size_t{64} << 20;
constexpr mode_t kNewFileMode = 0666;  // less the umask

int openForReplacing(const std::string& path) {
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    return open(path.c_str(), kFlags, kNewFileMode);
}

bool isRegular(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

bool writeAll(int descriptor, const std::string& content) {
    std::size_t written = 0;
    while (written < content.size()) {
        const ssize_t count = write(descriptor, content.data() + written, content.size() - written);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        written += static_cast<std::size_t>(count);
    }
    return true;
}

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
    if (!file.isOpen()) {
        return {};
    }
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
    if (content.empty()) {
        return removeFile(path);
    }
    const int descriptor = openForReplacing(path);
    if (descriptor < 0) {
        return false;
    }
    const bool written = isRegular(descriptor) && writeAll(descriptor, content);
    // Some file systems tell only now that the disk is full.
    return close(descriptor) == 0 && written;
}

}  // namespace Utils
}  // namespace TR
