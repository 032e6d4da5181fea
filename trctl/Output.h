#pragma once

#include <string_view>

namespace trctl {

/// Standard output. When its reader has gone the program ends at once and
/// in silence, with status 0, as the reader has what it wanted. Any other failing write throws
/// std::system_error.
class Output {
  public:
    Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void line(std::string_view text);
    void print(std::string_view text);
    void flush();
};

/// One line on standard error, escaped.
void complain(std::string_view text);
/// The same, without the program's name ahead and with the text's own line feeds.
void complainLines(std::string_view text);

}  // namespace trctl
