#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace TR {
namespace Utils {

enum class LineFeeds { Drop, Keep };

// The lines of a text in order, at most `maximum` of them unless it is 0. A last line without a
// line feed counts.
std::vector<std::string> splitLines(const std::string& text, LineFeeds lineFeeds,
                                    std::size_t maximum = 0);

}  // namespace Utils
}  // namespace TR
