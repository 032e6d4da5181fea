#include "trctl/Tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using namespace trctl;

std::string drawn(const std::vector<Leaf>& leaves, const std::string& root,
                  const Strokes& strokes = kAsciiStrokes) {
    std::string text;
    for (const TreeLine& line : drawTree(leaves, root, strokes))
        text += line.ahead + line.name + (line.isLeaf ? " = " + line.value : "") + '\n';
    return text;
}

TEST(TreeTest, ObjectsBranchAndLeavesCarryTheirValues) {
    EXPECT_EQ(drawn({{"Device.", ""},
                     {"Device.A.", ""},
                     {"Device.A.Rate", "5"},
                     {"Device.A.Status", ""},
                     {"Device.Name", "box"}},
                    ""),
              "Device.\n"
              "|-- A.\n"
              "|   |-- Rate = 5\n"
              "|   `-- Status = \n"
              "`-- Name = box\n");
}

TEST(TreeTest, InUtf8TheStrokesJoin) {
    EXPECT_EQ(drawn({{"D.A.x", "1"}, {"D.B", "2"}}, "D.", kUnicodeStrokes),
              "D.\n├── A.\n│   └── x = 1\n└── B = 2\n");
}

TEST(TreeTest, ARootShowsWhatIsBeneathItOnly) {
    EXPECT_EQ(drawn({{"D.A.x", "1"}, {"D.B.y", "2"}}, "D.A."), "D.A.\n`-- x = 1\n");
}

TEST(TreeTest, NumbersAreInTheOrderOfNumbers) {
    EXPECT_EQ(drawn({{"D.10.", ""}, {"D.2.", ""}, {"D.B", ""}}, "D."),
              "D.\n|-- 2.\n|-- 10.\n`-- B = \n");
}

TEST(TreeTest, AParameterAndAnObjectOfOneNameAreBothDrawn) {
    EXPECT_EQ(drawn({{"D.A", "1"}, {"D.A.", ""}, {"D.A.x", "2"}}, ""),
              "D.\n|-- A = 1\n`-- A.\n    `-- x = 2\n");
}

TEST(TreeTest, OddAddressesAreDrawnToo) {
    EXPECT_EQ(drawn({{".", ""}, {"..x", "1"}, {"x", "2"}}, ""), ".\n`-- .\n    `-- x = 1\nx = 2\n");
    EXPECT_EQ(drawn({}, ""), "");
    EXPECT_EQ(drawn({{"", "1"}}, ""), "");
}

// The daemon adds unknown addresses of up to a kibibyte.
TEST(TreeTest, AThousandLevelsAreDrawn) {
    const auto lines = drawTree({{std::string(1024, '.'), "1"}}, "", kAsciiStrokes);
    ASSERT_EQ(lines.size(), 1024U);
    EXPECT_EQ(lines.back().name, ".");
}

}  // namespace
