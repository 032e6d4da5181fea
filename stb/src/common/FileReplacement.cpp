#include "stb/src/common/FileReplacement.h"

#include "stb/src/common/Files.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kNewFileMode = 0666;  // less the umask
constexpr int kFlags = O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
// No setting is that large; the box's memory is not spent on a copy of something else.
constexpr off_t kLargestKept = off_t{16} << 20;

off_t regularSize(int descriptor) {
    struct stat status {};
    const bool isRegular = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    return isRegular ? status.st_size : -1;
}

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

FileReplacement::FileReplacement(const std::string& path) : path_(path) {
    open();
}

FileReplacement::~FileReplacement() {
    closeFile();
}

void FileReplacement::open() {
    descriptor_ = ::open(path_.c_str(), kFlags);
    if (descriptor_ >= 0 || errno != ENOENT) return;
    descriptor_ = ::open(path_.c_str(), kFlags | O_CREAT | O_EXCL, kNewFileMode);
    isNew_ = descriptor_ >= 0;
    if (!isNew_ && errno == EEXIST)  // a link to nothing yet
        descriptor_ = ::open(path_.c_str(), kFlags | O_CREAT, kNewFileMode);
}

bool FileReplacement::write(const std::string& content) {
    const off_t oldSize = descriptor_ < 0 ? -1 : regularSize(descriptor_);
    if (oldSize < 0) return false;
    if (!hasRoomFor(content.size())) {
        undo({}, false);
        return false;
    }
    std::string oldContent;
    const bool isOldKept = oldSize > 0 && oldSize <= kLargestKept;
    if (isOldKept) oldContent = TR::Utils::getFileContent(path_);
    // Some file systems tell only at the end that the disk is full.
    if (replaceContent(content) && closeFile()) return true;
    undo(oldContent, isOldKept && !oldContent.empty());
    return false;
}

// Asks for the room beside what the file has, so that a full disk is met before anything is
// touched. Where the file system cannot tell, the write itself will.
bool FileReplacement::hasRoomFor(std::size_t size) const {
    if (fallocate(descriptor_, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) == 0) return true;
    return errno != ENOSPC && errno != EDQUOT && errno != EFBIG;
}

// Emptied first: a reader, or a box that loses its power just now, may find less than the whole
// content, but never a mixture of the new and the old one.
bool FileReplacement::replaceContent(const std::string& content) const {
    return ftruncate(descriptor_, 0) == 0 && lseek(descriptor_, 0, SEEK_SET) == 0 &&
           writeAll(descriptor_, content);
}

bool FileReplacement::closeFile() {
    const int descriptor = descriptor_;
    descriptor_ = -1;
    return descriptor < 0 || close(descriptor) == 0;
}

void FileReplacement::undo(const std::string& oldContent, bool isOldKnown) {
    if (isNew_) {
        unlink(path_.c_str());
        return;
    }
    if (descriptor_ < 0) open();
    if (isOldKnown) {
        // Its own room was given back a moment ago.
        replaceContent(oldContent);
    }
}
