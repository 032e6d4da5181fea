#include "cwmp/UciText.h"

#include <gtest/gtest.h>

namespace {

using namespace cwmp;
using Values = std::vector<std::string>;

TEST(UciTextTest, OptionsAndListsAreRead) {
    const UciOptions options = parseUciShow(
        "easycwmp.@acs[0]=acs\n"
        "easycwmp.@acs[0].url='http://acs/a=b'\n"
        "easycwmp.@notifications[0].active='Device.A' 'Device.B.'\n");
    EXPECT_EQ(firstOf(options, "@acs[0].url"), "http://acs/a=b");
    EXPECT_EQ(options.at("@notifications[0].active"), (Values{"Device.A", "Device.B."}));
    EXPECT_EQ(options.at("@acs[0]"), Values{"acs"});
    EXPECT_EQ(firstOf(options, "@acs[0].none"), "");
}

TEST(UciTextTest, QuotesLineFeedsAndBlanksInAValueStay) {
    const UciOptions options =
        parseUciShow("e.@a[0].one=' it'\\''s\n\\two ' 'x'\ne.@a[0].two='$(b) `c` \"d\"'\n");
    EXPECT_EQ(options.at("@a[0].one"), (Values{" it's\n\\two ", "x"}));
    EXPECT_EQ(firstOf(options, "@a[0].two"), "$(b) `c` \"d\"");
}

TEST(UciTextTest, NamedSectionsStandUnderTheirTypeToo) {
    const UciOptions options =
        parseUciShow("e.main=acs\ne.main.url='u'\ne.other=acs\ne.other.url='v'\n");
    EXPECT_EQ(firstOf(options, "@acs[0].url"), "u");
    EXPECT_EQ(firstOf(options, "@acs[1].url"), "v");
}

TEST(UciTextTest, BrokenOutputDoesNoHarm) {
    EXPECT_TRUE(parseUciShow("").empty());
    EXPECT_TRUE(parseUciShow("nonsense\n\n\n").empty());
    EXPECT_TRUE(parseUciShow("=x\n.").empty());
    EXPECT_EQ(firstOf(parseUciShow("x\ne.@a[0].b='c"), "@a[0].b"), "c");
}

}  // namespace
