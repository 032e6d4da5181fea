#pragma once

#include <optional>
#include <string>

namespace cwmp {

/// The lines of a descriptor. A line that is too long comes as its beginning, cut; so it is not
/// JSON. One thread; borrows the descriptor.
class LineReader {
  public:
    static constexpr std::size_t kLongest = std::size_t{2} << 20;

    explicit LineReader(int descriptor) : descriptor_(descriptor) {}

    /// Waits for the next line, without its line feed; nothing at the end of the file. A last line
    /// without a line feed counts.
    std::optional<std::string> next();

  private:
    bool readMore();
    std::string take(std::size_t length);

    const int descriptor_;
    std::string pending_;
    std::size_t searched_ = 0;  ///< of pending_, without a line feed in it
};

}  // namespace cwmp
