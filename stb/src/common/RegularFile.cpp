#include "stb/src/common/RegularFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A sparse or damaged file may claim more than the box can address.
std::size_t addressable(std::int64_t size) {
    constexpr std::int64_t kLimit = std::numeric_limits<std::ptrdiff_t>::max() / 2;
    return static_cast<std::size_t>(std::min(size, kLimit));
}

}  // namespace

RegularFile::RegularFile(const std::string& path)
    : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
    struct stat status {};
    if (descriptor_ < 0) return;
    if (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
        closeDescriptor();
        return;
    }
    sizeHint_ = addressable(status.st_size);
}

RegularFile::~RegularFile() {
    closeDescriptor();
}

void RegularFile::closeDescriptor() {
    if (descriptor_ >= 0) {
        close(descriptor_);
        descriptor_ = -1;
    }
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
