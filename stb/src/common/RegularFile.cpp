#include "stb/src/common/RegularFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace TR::Utils {
namespace {

constexpr int kFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr mode_t kNewFileMode = 0666;  // less the umask

bool writeAll(int descriptor, const std::string& content) {
    std::size_t written = 0;
    while (written < content.size()) {
        const ssize_t count = write(descriptor, content.data() + written, content.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

RegularFile::RegularFile(const std::string& path, Use use)
    : descriptor_(open(path.c_str(), kFlags | (use == Use::Read ? O_RDONLY : O_RDWR | O_CREAT),
                       kNewFileMode)) {
    struct stat status {};
    if (descriptor_ < 0) return;
    if (fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode))
        sizeHint_ = status.st_size;
    else
        close();
}

bool RegularFile::close() {
    const int descriptor = descriptor_;
    descriptor_ = -1;
    return descriptor < 0 || ::close(descriptor) == 0;
}

void RegularFile::seek(std::int64_t offset) {
    if (lseek(descriptor_, offset, SEEK_DATA) >= 0) return;
    // No data up to the end, or a file system that does not know where its holes are.
    errno == ENXIO ? lseek(descriptor_, 0, SEEK_END) : lseek(descriptor_, offset, SEEK_SET);
}

std::size_t RegularFile::read(char* buffer, std::size_t room) {
    std::size_t total = 0;
    while (total < room) {
        const ssize_t count = ::read(descriptor_, buffer + total, room - total);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        total += static_cast<std::size_t>(count);
    }
    return total;
}

// Emptied first: a reader, or a box that loses power at this moment, may find less than the whole
// content, but never a mixture of the new and the old one. Some file systems report only at the
// close that the disk is full.
bool RegularFile::replace(const std::string& content) {
    const bool isWritten = ftruncate(descriptor_, 0) == 0 && lseek(descriptor_, 0, SEEK_SET) == 0 &&
                           writeAll(descriptor_, content);
    return close() && isWritten;
}

}  // namespace TR::Utils
