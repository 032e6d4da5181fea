#include "trctl/Paths.h"

#include <gtest/gtest.h>

namespace {

using namespace trctl;

const Addresses kListed = {"Device.",      "Device.A.",        "Device.A.1.", "Device.A.1.Rate",
                           "Device.A.10.", "Device.A.10.Rate", "Device.A.2.", "Device.A.2.Rate",
                           "Device.AB",    "Device.Empty.",    "Device.Name"};

Addresses found(const Addresses& paths) {
    return select(kListed, paths).found;
}

TEST(PathsTest, AParameterIsFoundByItsFullAddressOnly) {
    EXPECT_EQ(found({"Device.AB"}), Addresses{"Device.AB"});
    EXPECT_EQ(select(kListed, {"Device.A"}).unmatched, Addresses{"Device.A"});
    EXPECT_EQ(select(kListed, {""}).unmatched, Addresses{""});
}

TEST(PathsTest, AnObjectStandsForEverythingBeneathItButNotItself) {
    EXPECT_EQ(found({"Device.A.1."}), Addresses{"Device.A.1.Rate"});
    EXPECT_EQ(found({"Device.A."}).size(), 6U);
    EXPECT_EQ(select(kListed, {"Device.Empty."}).unmatched, Addresses{"Device.Empty."});
    EXPECT_EQ(select(kListed, {"Device.B."}).unmatched, Addresses{"Device.B."});
}

TEST(PathsTest, AnObjectThatIsNotListedItselfStillStandsForWhatIsBeneath) {
    EXPECT_EQ(select({"Device.X.Y"}, {"Device.X."}).found, Addresses{"Device.X.Y"});
}

TEST(PathsTest, APatternStaysWithinALevelUnlessItHasTwoStars) {
    const Addresses rates = {"Device.A.1.Rate", "Device.A.10.Rate", "Device.A.2.Rate"};
    EXPECT_EQ(select(kListed, {"*Rate"}).unmatched, Addresses{"*Rate"});
    EXPECT_EQ(found({"**Rate"}), rates);
    EXPECT_EQ(found({"**.Rate"}), rates);
    EXPECT_EQ(found({"Device.*.*.Rate"}), rates);
    EXPECT_EQ(found({"Device.**.Name"}), Addresses{"Device.Name"});
    EXPECT_EQ(found({"Device.A.?.Rate"}), (Addresses{"Device.A.1.Rate", "Device.A.2.Rate"}));
    EXPECT_EQ(found({"Device.A.[2-9].Rate"}), Addresses{"Device.A.2.Rate"});
}

TEST(PathsTest, APatternWithoutAPointAtItsEndAlsoNamesTheObjectsOfItsLevel) {
    EXPECT_EQ(found({"Device.*"}),
              (Addresses{"Device.A.", "Device.AB", "Device.Empty.", "Device.Name"}));
    EXPECT_EQ(selectThemselves(kListed, {"Device.A*"}).found,
              (Addresses{"Device.A.", "Device.AB"}));
}

TEST(PathsTest, APatternWithAPointAtItsEndStandsForEverythingBeneathItsObjects) {
    EXPECT_EQ(found({"Device.A.1*."}), (Addresses{"Device.A.1.Rate", "Device.A.10.Rate"}));
    EXPECT_EQ(found({"Dev*."}), found({"Device."}));
    EXPECT_EQ(found({"**."}), kListed);
    EXPECT_EQ(selectThemselves(kListed, {"Device.A.1*."}).found,
              (Addresses{"Device.A.1.", "Device.A.10."}));
    EXPECT_EQ(select(kListed, {"Device.E*."}).unmatched, Addresses{"Device.E*."});
}

TEST(PathsTest, EachAddressComesOnceInTheOrderOfThePaths) {
    EXPECT_EQ(found({"Device.Name", "Device.AB", "Device.N*", "Device.Name"}),
              (Addresses{"Device.Name", "Device.AB"}));
}

TEST(PathsTest, AnAddressThatLooksLikeAPatternIsFoundAsItself) {
    EXPECT_EQ(select({"Device.*", "Device.B"}, {"Device.*"}).found, Addresses{"Device.*"});
}

TEST(PathsTest, WithoutPathsEverythingIsFoundInOrder) {
    EXPECT_EQ(select({"b", "a"}, {}).found, (Addresses{"a", "b"}));
}

TEST(PathsTest, AnObjectCanBeSelectedItself) {
    EXPECT_EQ(selectThemselves(kListed, {"Device.A."}).found, Addresses{"Device.A."});
    EXPECT_EQ(selectThemselves(kListed, {"Device.B."}).unmatched, Addresses{"Device.B."});
}

TEST(PathsTest, TheNextLevelHasObjectsWithTheirPointEachOnce) {
    EXPECT_EQ(nextLevel(kListed, {}), Addresses{"Device."});
    EXPECT_EQ(nextLevel(kListed, {"Device."}),
              (Addresses{"Device.A.", "Device.AB", "Device.Empty.", "Device.Name"}));
    EXPECT_EQ(nextLevel(kListed, {"Device.A."}),
              (Addresses{"Device.A.1.", "Device.A.10.", "Device.A.2."}));
    EXPECT_EQ(nextLevel({"Device.X.Y.Z"}, {"Device."}), Addresses{"Device.X."});
    EXPECT_EQ(nextLevel(kListed, {"Device.A.*."}),
              (Addresses{"Device.A.1.Rate", "Device.A.10.Rate", "Device.A.2.Rate"}));
    EXPECT_EQ(nextLevel({"D.*.A", "D.X.B.C", "D.Y"}, {"D.*."}), (Addresses{"D.*.A", "D.X.B."}));
    EXPECT_TRUE(nextLevel(kListed, {"Device.B."}).empty());
    EXPECT_TRUE(nextLevel(kListed, {"Device.A"}).empty());
}

TEST(PathsTest, WithoutLeavesOutWhatThePathsName) {
    const Addresses all = {"D.A.B", "D.A.C", "D.E", "D.F"};
    EXPECT_EQ(without(all, {}), all);
    EXPECT_EQ(without(all, {"D.A.", "D.F", "D.Nope"}), Addresses{"D.E"});
}

}  // namespace
