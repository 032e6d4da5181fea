#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace trctl {

/// The value as a number: decimal digits with sign, point or exponent. Nothing for any other text.
std::optional<double> numberOf(const std::string& text);

/// The latest values of one parameter as a line in a field of characters. A value that is not a
/// number leaves a gap. Keeps as many as any terminal shows.
class Plot {
  public:
    enum class Style { Braille, Ascii };

    void add(std::optional<double> sample);

    /// \p rows lines of at most \p columns columns. The newest value is at the right; the highest
    /// and lowest shown are at the left. Empty when no line fits.
    std::vector<std::string> draw(std::size_t columns, std::size_t rows, Style style) const;

    /// The row, from 0 at the top, of a value between these two; the middle one when they are
    /// equal.
    static std::size_t rowOf(double value, double lowest, double highest, std::size_t rows);

  private:
    std::deque<std::optional<double>> samples_;
};

/// As short as its digits allow: 1203, 0.25, 1.2e+30.
std::string numberText(double number);

}  // namespace trctl
