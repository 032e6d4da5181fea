#include "stb/src/common/SystemTexts.h"

#include "stb/src/common/Files.h"
#include "stb/src/common/RegularFile.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace TR {
namespace {

constexpr int kOldestRotation = 300;

struct LogPart {
    std::string path;
    std::int64_t offset;  // where to begin
    std::size_t length;
};

std::string pathOf(const std::string& base, int rotation) {
    return rotation < 0 ? base : base + '.' + std::to_string(rotation);
}

// Newest first, until there are `most` bytes.
std::vector<LogPart> findParts(const std::string& base, std::size_t most) {
    std::vector<LogPart> parts;
    for (int rotation = -1; rotation <= kOldestRotation && most > 0; ++rotation) {
        const std::string path = pathOf(base, rotation);
        const Utils::RegularFile file(path);
        if (!file.isOpen()) continue;
        const auto length = std::min(file.sizeHint(), static_cast<std::int64_t>(most));
        parts.push_back({path, file.sizeHint() - length, static_cast<std::size_t>(length)});
        most -= parts.back().length;
    }
    return parts;
}

// Returns the bytes read: the log may have been rotated or truncated since it was measured. A log
// that is truncated while its writer keeps its offset begins with a hole.
std::size_t readPart(const LogPart& part, char* room) {
    Utils::RegularFile file(part.path);
    if (!file.isOpen()) return 0;
    file.seek(part.offset);
    return file.read(room, part.length);
}

}  // namespace

char* joinLogFiles(const std::string& base, std::size_t& length, std::size_t most) {
    length = 0;
    const std::vector<LogPart> parts = findParts(base, most);
    std::size_t room = 1;
    for (const LogPart& part : parts) room += part.length;
    char* const text = parts.empty() ? nullptr : static_cast<char*>(std::malloc(room));
    if (text == nullptr) return nullptr;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part)
        length += readPart(*part, text + length);
    text[length] = '\0';
    return text;
}

char* getLogs(std::size_t& length) {
    return joinLogFiles("/tmp/syslog", length);
}

char* getLogs() {
    std::size_t length = 0;
    return getLogs(length);
}

std::string readMemInfo() {
    return Utils::getFileContent("/proc/meminfo");
}

}  // namespace TR
