#include "cwmp/NotificationFile.h"

#include "cwmp/Log.h"
#include "stb/src/common/RegularFile.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace cwmp {

namespace {

constexpr std::int64_t kLargest = std::int64_t{8} << 20;
constexpr mode_t kMode = 0640;
constexpr char kBeside[] = ".new";

bool writeAll(int file, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = write(file, text.data() + done, text.size() - done);
        if (count < 0 && errno != EINTR) return false;
        if (count > 0) done += static_cast<std::size_t>(count);
    }
    return true;
}

// Never through a link or into a file of somebody else: the folder is everybody's.
bool create(const std::string& path, const std::string& text) {
    unlink(path.c_str());
    const int file =
        open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kMode);
    if (file < 0) return false;
    // The caller's umask takes no part.
    const bool isWritten = fchmod(file, kMode) == 0 && writeAll(file, text);
    return close(file) == 0 && isWritten;
}

}  // namespace

std::string NotificationFile::read() const {
    TR::Utils::RegularFile file(path_);
    if (!file.isOpen() || file.sizeHint() > kLargest) return {};
    std::string text(static_cast<std::size_t>(file.sizeHint()), '\0');
    text.resize(file.read(text.data(), text.size()));
    return text;
}

bool NotificationFile::writeBeside(const std::string& text) const {
    if (create(path_ + kBeside, text)) return true;
    warn(path_ + kBeside + " cannot be written, the old file stays");
    unlink((path_ + kBeside).c_str());
    return false;
}

bool NotificationFile::putInPlace() const {
    if (std::rename((path_ + kBeside).c_str(), path_.c_str()) == 0) return true;
    warn(path_ + " cannot be replaced, the old file stays");
    return false;
}

}  // namespace cwmp
