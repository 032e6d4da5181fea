#pragma once

#include <chrono>

namespace bench {

/// What the wrapped calls have taken on this thread since `reset`.
struct Probes {
    std::chrono::nanoseconds locked{0};    ///< with any mutex held
    std::chrono::nanoseconds commands{0};  ///< of that, from a command's start to its end
    std::chrono::nanoseconds logs{0};      ///< of that, in getLogs
};

Probes& probes();
inline void reset() {
    probes() = {};
}

}  // namespace bench
