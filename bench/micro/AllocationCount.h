#pragma once

#include <cstdint>

namespace bench {

/// How often the program has called operator new so far. Every allocation of the program is
/// counted, those of a library's C code are not.
std::uint64_t allocationCount();

}  // namespace bench
