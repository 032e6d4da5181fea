#pragma once

#include <algorithm>
#include <chrono>

namespace cwmp {

/// When everything that one command waits for has to be over. A plain value.
class Deadline {
  public:
    using Milliseconds = std::chrono::milliseconds;

    explicit Deadline(Milliseconds time) : end_(std::chrono::steady_clock::now() + time) {}

    /// Never negative.
    Milliseconds left() const {
        const auto time = end_ - std::chrono::steady_clock::now();
        return std::max(std::chrono::ceil<Milliseconds>(time), Milliseconds(0));
    }
    bool isOver() const { return left() == Milliseconds(0); }

  private:
    std::chrono::steady_clock::time_point end_;
};

}  // namespace cwmp
