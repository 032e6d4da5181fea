#pragma once

/// libdbus short of memory, as far as this program's D-Bus thread sees it: the program's functions
/// come before libdbus's.
namespace LibdbusFaults {

/// A string that cannot be appended to a message.
constexpr char kUnappendable[] = "a string for which there is no memory";

/// While it lives, the error NoMemory cannot be made either.
class NoErrors {
  public:
    NoErrors();
    ~NoErrors();
    NoErrors(const NoErrors&) = delete;
    NoErrors& operator=(const NoErrors&) = delete;
};

}  // namespace LibdbusFaults
