#include "trctl/Plot.h"

#include "trctl/Text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace trctl {

namespace {

constexpr std::size_t kMostSamples = 4096;

/// Dots, from 0 at the top left.
class Field {
  public:
    Field(std::size_t width, std::size_t height)
        : width_(width), height_(height), dots_(width * height) {}

    std::size_t width() const { return width_; }
    std::size_t height() const { return height_; }
    bool at(std::size_t x, std::size_t y) const { return dots_[y * width_ + x]; }
    /// Every dot of the column between the two, so that a steep line has no holes.
    void stroke(std::size_t x, std::size_t from, std::size_t to) {
        for (std::size_t y = std::min(from, to); y <= std::max(from, to); ++y)
            dots_[y * width_ + x] = true;
    }

  private:
    std::size_t width_;
    std::size_t height_;
    std::vector<bool> dots_;
};

struct Bounds {
    double lowest;
    double highest;
};

using Samples = std::vector<std::optional<double>>;

Samples latest(const std::deque<std::optional<double>>& samples, std::size_t count) {
    const std::size_t taken = std::min(samples.size(), count);
    return {samples.end() - static_cast<std::ptrdiff_t>(taken), samples.end()};
}

std::optional<Bounds> boundsOf(const Samples& samples) {
    std::optional<Bounds> bounds;
    for (const auto& sample : samples) {
        if (!sample) continue;
        if (!bounds) bounds = Bounds{*sample, *sample};
        bounds->lowest = std::min(bounds->lowest, *sample);
        bounds->highest = std::max(bounds->highest, *sample);
    }
    return bounds;
}

void drawLine(Field& field, const Samples& samples, const Bounds& bounds) {
    const auto rowOf = [&](double sample) {
        return Plot::rowOf(sample, bounds.lowest, bounds.highest, field.height());
    };
    const std::size_t first = field.width() - samples.size();
    for (std::size_t i = 0; i < samples.size(); ++i) {
        if (!samples[i]) continue;
        const std::size_t row = rowOf(*samples[i]);
        const std::size_t last = i > 0 && samples[i - 1] ? rowOf(*samples[i - 1]) : row;
        // The one before keeps its own dot.
        const std::size_t from = last < row ? last + 1 : (last > row ? last - 1 : row);
        field.stroke(first + i, from, row);
    }
}

std::string utf8Braille(unsigned dots) {
    const unsigned code = 0x2800 + dots;
    return {static_cast<char>(0xe2), static_cast<char>(0x80U | ((code >> 6U) & 0x3fU)),
            static_cast<char>(0x80U | (code & 0x3fU))};
}

// Two columns of four dots make a character.
std::string brailleCell(const Field& field, std::size_t column, std::size_t row) {
    constexpr unsigned kBits[4][2] = {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};
    unsigned dots = 0;
    for (std::size_t y = 0; y < 4; ++y) {
        for (std::size_t x = 0; x < 2; ++x)
            if (field.at(2 * column + x, 4 * row + y)) dots |= kBits[y][x];
    }
    return dots == 0 ? " " : utf8Braille(dots);
}

// In the first row the highest value, in the last one the lowest.
std::string labelOf(const Bounds& bounds, std::size_t row, std::size_t rows) {
    if (row == 0) return numberText(bounds.highest);
    return row + 1 == rows ? numberText(bounds.lowest) : "";
}

std::string leftPadded(const std::string& text, std::size_t columns) {
    return std::string(columns - std::min(columns, text.size()), ' ') + text;
}

}  // namespace

std::optional<double> numberOf(const std::string& text) {
    // strtod knows inf, nan and hexadecimal numbers too.
    if (text.empty() || text.find_first_not_of("+-.0123456789eE") != std::string::npos)
        return std::nullopt;
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (*end != '\0' || !std::isfinite(number)) return std::nullopt;
    return number;
}

std::string numberText(double number) {
    constexpr double kExact = 1e15;
    char text[32];
    const bool isWhole = std::fabs(number) < kExact && number == std::floor(number);
    std::snprintf(text, sizeof text, isWhole ? "%.0f" : "%.6g", number);
    return text;
}

void Plot::add(std::optional<double> sample) {
    samples_.push_back(sample);
    if (samples_.size() > kMostSamples) samples_.pop_front();
}

std::size_t Plot::rowOf(double value, double lowest, double highest, std::size_t rows) {
    if (rows == 0) return 0;
    const auto bottom = static_cast<double>(rows - 1);
    // Halved, because the difference of two large numbers may overflow.
    const double range = highest / 2 - lowest / 2;
    const double share = range > 0 ? (highest / 2 - value / 2) / range : 0.5;
    return static_cast<std::size_t>(std::lround(std::clamp(share, 0.0, 1.0) * bottom));
}

std::vector<std::string> Plot::draw(std::size_t columns, std::size_t rows, Style style) const {
    const std::size_t dotsAcross = style == Style::Braille ? 2 : 1;
    const std::size_t dotsDown = style == Style::Braille ? 4 : 1;
    // Values that the labels then cover count for the bounds too, because the labels' width depends
    // on the bounds.
    const auto bounds = boundsOf(latest(samples_, columns * dotsAcross));
    if (rows == 0 || !bounds) return std::vector<std::string>(rows);
    const std::size_t margin =
        std::max(numberText(bounds->lowest).size(), numberText(bounds->highest).size()) + 1;
    if (columns <= margin) return {};
    Field field((columns - margin) * dotsAcross, rows * dotsDown);
    drawLine(field, latest(samples_, field.width()), *bounds);
    std::vector<std::string> lines;
    for (std::size_t row = 0; row < rows; ++row) {
        std::string line = leftPadded(labelOf(*bounds, row, rows), margin - 1) + ' ';
        for (std::size_t column = 0; column < columns - margin; ++column) {
            line += style == Style::Braille ? brailleCell(field, column, row)
                                            : (field.at(column, row) ? "*" : " ");
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace trctl
