#pragma once

#include <optional>
#include <string>

/// Figures that the Amlogic drivers show as text files in /sys. Keeps no state; any thread may
/// call.
namespace STBAml {

/// The number at the start of a file, blanks before it skipped and whatever follows it ignored.
/// Nothing when the file cannot be opened, which is logged at ERROR, and when it holds no number or
/// one that does not fit the type: a caller must not take a failure for a figure.
template <typename T>
std::optional<T> getSys(const std::string& path);

template <>
std::optional<int> getSys<int>(const std::string& path);

}  // namespace STBAml
