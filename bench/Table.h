#pragma once

#include <string>

/// One row of the table that scripts/bench prints: figure, value, target, whether it is met, and
/// what the value was made of.
namespace bench {

/// A figure that is to stay at or below \p limit, in hundredths, as it is shown.
void reportAtMost(const std::string& figure, double value, double limit, const std::string& note);
/// A figure without a target; \p value comes with its unit.
void report(const std::string& figure, const std::string& value, const std::string& note);

/// The number with this many decimals.
std::string fixed(double number, int decimals);

}  // namespace bench
