#include "tests/soak/FlatCheck.h"

#include <algorithm>
#include <cstdio>

namespace {

// Of twenty samples the first four: pools fill up, and the C library's arenas find their size.
constexpr std::size_t kWarmUpShare = 5;
constexpr std::size_t kSlackKiB = 512;

}  // namespace

FlatCheck::FlatCheck(const std::string& unit) {
    std::printf("%10s %12s %12s %8s %9s\n", unit.c_str(), "memory KiB", "descriptors", "threads",
                "children");
}

void FlatCheck::add(std::size_t at, const Vitals& vitals, const std::string& remark) {
    samples_.push_back(vitals);
    std::printf("%10zu %12zu %12zu %8zu %9zu  %s\n", at, vitals.residentKiB, vitals.descriptors,
                vitals.threads, vitals.children, remark.c_str());
    std::fflush(stdout);
}

bool FlatCheck::isFlat() const {
    if (samples_.size() < 2) return false;
    const std::size_t warm = samples_.size() / kWarmUpShare;
    const Vitals& first = samples_[warm];
    std::size_t largestKiB = 0;
    bool isFlat = true;
    for (std::size_t i = warm; i < samples_.size(); ++i) {
        largestKiB = std::max(largestKiB, samples_[i].residentKiB);
        isFlat = isFlat && samples_[i].descriptors == first.descriptors &&
                 samples_[i].threads == first.threads;
    }
    const std::size_t boundKiB = first.residentKiB + first.residentKiB / 20 + kSlackKiB;
    isFlat = isFlat && largestKiB <= boundKiB;
    std::printf("memory after the warm-up %zu KiB, at most %zu KiB (bound %zu KiB): %s\n",
                first.residentKiB, largestKiB, boundKiB, isFlat ? "flat" : "NOT FLAT");
    return isFlat;
}
