#include "trctl/Plot.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

using trctl::numberOf;
using trctl::numberText;
using trctl::Plot;
using Lines = std::vector<std::string>;

Plot plotOf(const std::vector<double>& samples) {
    Plot plot;
    for (const double sample : samples) plot.add(sample);
    return plot;
}

TEST(PlotTest, NumbersAreDecimalDigitsAndNothingElse) {
    EXPECT_EQ(numberOf("1203"), 1203);
    EXPECT_EQ(numberOf("-45"), -45);
    EXPECT_EQ(numberOf("0.25"), 0.25);
    for (const char* text : {"", "-", "12 ", "Up", "nan", "inf", "0x10", "1e999", "1.2.3", "5 MB"})
        EXPECT_FALSE(numberOf(text).has_value()) << text;
}

TEST(PlotTest, NumbersAreWrittenShort) {
    EXPECT_EQ(numberText(1203), "1203");
    EXPECT_EQ(numberText(-0.25), "-0.25");
    EXPECT_EQ(numberText(1.2e30), "1.2e+30");
}

TEST(PlotTest, TheHighestValueIsInTheTopRowTheLowestInTheBottomOne) {
    EXPECT_EQ(Plot::rowOf(10, 0, 10, 5), 0U);
    EXPECT_EQ(Plot::rowOf(0, 0, 10, 5), 4U);
    EXPECT_EQ(Plot::rowOf(5, 0, 10, 5), 2U);
    EXPECT_EQ(Plot::rowOf(7, 7, 7, 5), 2U);
    EXPECT_EQ(Plot::rowOf(20, 0, 10, 5), 0U);
    EXPECT_EQ(Plot::rowOf(1, 0, 1, 0), 0U);
    const double largest = std::numeric_limits<double>::max();
    EXPECT_EQ(Plot::rowOf(0, -largest, largest, 5), 2U);
}

TEST(PlotTest, TheNewestValueIsAtTheRightWithTheBoundsAtTheLeft) {
    EXPECT_EQ(plotOf({0, 1, 2}).draw(6, 3, Plot::Style::Ascii),
              (Lines{"2    *", "    * ", "0  *  "}));
}

TEST(PlotTest, ASteepLineHasNoHoles) {
    EXPECT_EQ(plotOf({0, 4}).draw(4, 5, Plot::Style::Ascii),
              (Lines{"4  *", "   *", "   *", "   *", "0 * "}));
}

TEST(PlotTest, BraillePutsEightDotsIntoACharacter) {
    EXPECT_EQ(plotOf({0, 1, 2, 3}).draw(4, 1, Plot::Style::Braille), (Lines{"3 ⡠⠊"}));
}

TEST(PlotTest, OlderValuesMoveOutAtTheLeft) {
    EXPECT_EQ(plotOf({5, 5, 0, 1}).draw(4, 2, Plot::Style::Ascii).size(), 2U);
    EXPECT_EQ(plotOf({9, 9, 9, 9, 0, 1, 0, 1}).draw(4, 2, Plot::Style::Ascii),
              (Lines{"1  *", "0 * "}));
}

TEST(PlotTest, AValueThatIsNotANumberLeavesAGap) {
    Plot plot;
    plot.add(0);
    plot.add(std::nullopt);
    plot.add(2);
    EXPECT_EQ(plot.draw(5, 3, Plot::Style::Ascii), (Lines{"2   *", "     ", "0 *  "}));
}

TEST(PlotTest, WithoutRoomOrValuesNothingIsDrawn) {
    EXPECT_EQ(Plot().draw(80, 2, Plot::Style::Braille), (Lines{"", ""}));
    EXPECT_TRUE(plotOf({1, 2}).draw(80, 0, Plot::Style::Braille).empty());
    EXPECT_TRUE(plotOf({1, 2}).draw(2, 5, Plot::Style::Ascii).empty());
    EXPECT_EQ(plotOf({1, 2}).draw(3, 1, Plot::Style::Ascii), (Lines{"2 *"}));
}

TEST(PlotTest, ManyValuesAreShownOnAnySize) {
    Plot plot;
    for (int i = 0; i < 100'000; ++i) plot.add(i % 1000);
    for (std::size_t columns = 0; columns < 200; columns += 7)
        for (std::size_t rows = 0; rows < 60; rows += 11)
            EXPECT_LE(plot.draw(columns, rows, Plot::Style::Braille).size(), rows);
}

}  // namespace
