#pragma once

#include <cstdlib>
#include <string>

/// What each fuzzer defines: tries any bytes as its input and ends the program at a fault.
void tryInput(const std::string& input);

inline void require(bool condition) {
    if (!condition) std::abort();
}
