#include "cwmp/LineReader.h"

#include <array>
#include <cerrno>

#include <unistd.h>

namespace cwmp {

namespace {

constexpr std::size_t kChunk = 65536;

}  // namespace

bool LineReader::readMore() {
    std::array<char, kChunk> buffer;
    ssize_t count = 0;
    do count = read(descriptor_, buffer.data(), buffer.size());
    while (count < 0 && errno == EINTR);
    if (count <= 0) return false;
    pending_.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

// Takes a line and its line feed, if there is one.
std::string LineReader::take(std::size_t length) {
    std::string line = pending_.substr(0, length);
    pending_.erase(0, length + 1);
    searched_ = 0;
    return line;
}

std::optional<std::string> LineReader::next() {
    std::optional<std::string> tooLong;
    while (true) {
        const std::size_t end = pending_.find('\n', searched_);
        if (end != std::string::npos) {
            std::string line = take(end);
            return tooLong ? tooLong : line;
        }
        searched_ = pending_.size();
        if (searched_ > kLongest) {
            if (!tooLong) tooLong = pending_.substr(0, kChunk);
            take(searched_);
        }
        if (readMore()) continue;
        if (pending_.empty()) return tooLong;
        std::string line = take(pending_.size());
        return tooLong ? tooLong : line;
    }
}

}  // namespace cwmp
