#include "stb/src/common/Lines.h"

#include <algorithm>

namespace TR {
namespace Utils {

std::vector<std::string> splitLines(const std::string& text, LineFeeds lineFeeds,
                                    std::size_t maximum) {
    std::vector<std::string> lines;
    const std::size_t kept = lineFeeds == LineFeeds::Keep ? 1 : 0;
    std::size_t begin = 0;
    while (begin < text.size() && (maximum == 0 || lines.size() < maximum)) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines.emplace_back(text, begin, end - begin + kept);
        begin = end + 1;
    }
    return lines;
}

}  // namespace Utils
}  // namespace TR
