#include "bench/whole/Samples.h"

#include <algorithm>

namespace bench {

namespace {

double percentileOf(std::vector<double> values, double fraction) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1))];
}

}  // namespace

void Samples::add(const std::function<void()>& call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    const std::chrono::duration<double, std::micro> taken =
        std::chrono::steady_clock::now() - start;
    groups_.back().push_back(taken.count());
}

std::vector<double> Samples::percentiles(double fraction) const {
    std::vector<double> values;
    values.reserve(groups_.size());
    for (const auto& group : groups_) values.push_back(percentileOf(group, fraction));
    return values;
}

double Samples::percentile(double fraction) const {
    return median(percentiles(fraction));
}

double median(std::vector<double> values) {
    return percentileOf(std::move(values), 0.5);
}

double ratio(const Samples& one, const Samples& other, double fraction) {
    std::vector<double> ratios = one.percentiles(fraction);
    const std::vector<double> others = other.percentiles(fraction);
    for (std::size_t i = 0; i < ratios.size(); ++i) ratios[i] /= others[i];
    return median(ratios);
}

}  // namespace bench
