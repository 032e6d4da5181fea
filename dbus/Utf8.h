#pragma once

#include <string>

namespace TR {

/// The text as D-Bus lets it through: each byte that is not part of valid UTF-8 (no overlong form,
/// no surrogate, nothing above U+10FFFF), and each NUL, becomes U+FFFD. libdbus ends the process
/// over such a byte; values come from files, commands and radio names, so any byte can turn up.
std::string toValidUtf8(std::string text);

}  // namespace TR
