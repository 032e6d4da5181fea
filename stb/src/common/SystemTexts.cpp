#include "stb/src/common/SystemTexts.h"

#include "stb/src/common/Files.h"
#include "stb/src/common/RegularFile.h"

#include <cstddef>
#include <cstdlib>

namespace TR {
namespace {

constexpr int kOldestRotation = 300;

// A growing malloc() text: the caller of joinLogFiles() frees it, and megabytes are read in place
// instead of being copied. Short of memory it keeps what it has.
class LogText {
  public:
    LogText() = default;
    LogText(const LogText&) = delete;
    LogText& operator=(const LogText&) = delete;

    // Only the bytes really read count: a log may be truncated between its measuring and its
    // reading.
    void appendFile(const std::string& path) {
        RegularFile file(path);
        if (!file.isOpen() || !grow(file.sizeHint())) return;
        length_ += file.read(text_ + length_, file.sizeHint());
        text_[length_] = '\0';
    }

    // Null when no file was found; the caller owns the text.
    char* text() const { return text_; }

  private:
    bool grow(std::size_t more) {
        auto* const larger = static_cast<char*>(std::realloc(text_, length_ + more + 1));
        if (larger != nullptr) text_ = larger;
        return larger != nullptr;
    }

    char* text_ = nullptr;
    std::size_t length_ = 0;
};

}  // namespace

char* joinLogFiles(const std::string& base) {
    LogText log;
    for (int rotation = kOldestRotation; rotation >= 0; --rotation)
        log.appendFile(base + "." + std::to_string(rotation));
    log.appendFile(base);
    return log.text();
}

char* getLogs() {
    return joinLogFiles("/tmp/syslog");
}

std::string readMemInfo() {
    return Utils::getFileContent("/proc/meminfo");
}

}  // namespace TR
