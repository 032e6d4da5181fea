#pragma once

#include "tests/support/Vitals.h"

#include <cstddef>
#include <string>
#include <vector>

/// The figures of a long run: printed as they come, and at the end compared with the first ones
/// after the warm-up. Memory may grow by a twentieth and 512 KiB, descriptors and threads not at
/// all.
class FlatCheck {
  public:
    /// \p unit is what the samples are counted in, such as "cycles".
    explicit FlatCheck(const std::string& unit);

    void add(std::size_t at, const Vitals& vitals, const std::string& remark = "");
    /// Prints the verdict; true when everything was flat.
    bool isFlat() const;

  private:
    std::vector<Vitals> samples_;
};
