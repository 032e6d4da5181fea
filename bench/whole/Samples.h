#pragma once

#include <chrono>
#include <functional>
#include <vector>

namespace bench {

/// Wall times of one kind of call, in microseconds, in groups: one group for each quiet time
/// between two cycles. Subjects that are sampled in turn meet the same noise, so their groups are
/// compared one by one.
class Samples {
  public:
    void beginGroup() { groups_.emplace_back(); }
    void dropGroup() { groups_.pop_back(); }
    /// Times the call into the newest group.
    void add(const std::function<void()>& call);

    /// One number for each group.
    std::vector<double> percentiles(double fraction) const;
    /// The median over the groups.
    double percentile(double fraction) const;
    double p50() const { return percentile(0.5); }

  private:
    std::vector<std::vector<double>> groups_;
};

double median(std::vector<double> values);
/// The median over the groups of one's percentile through the other's.
double ratio(const Samples& one, const Samples& other, double fraction);

}  // namespace bench
