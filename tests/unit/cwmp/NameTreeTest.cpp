#include "cwmp/NameTree.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using cwmp::NameTree;
using Names = NameTree::Names;

NameTree sample() {
    return NameTree({"Device.", "Device.B.1.X", "Device.A.Two", "Device.A.One", "Device.A.One",
                     "Device.Empty.", "Device.B.10.X", "Device.B.2.X", "Device.Bare"});
}

Names all(const NameTree& tree, const std::string& name) {
    return tree.within(name);
}

Names parameters(const std::string& name) {
    Names names;
    const NameTree tree = sample();
    for (const std::string* parameter : tree.parametersWithin(name)) names.push_back(*parameter);
    return names;
}

TEST(NameTreeTest, ObjectsOnTheWayAreListedOnceAndInOrder) {
    EXPECT_EQ(all(sample(), ""),
              (Names{"Device.", "Device.A.", "Device.A.One", "Device.A.Two", "Device.B.",
                     "Device.B.1.", "Device.B.1.X", "Device.B.10.", "Device.B.10.X", "Device.B.2.",
                     "Device.B.2.X", "Device.Bare", "Device.Empty."}));
}

TEST(NameTreeTest, APathTakesItselfAndWhatIsBelow) {
    EXPECT_EQ(all(sample(), "Device.B.1."), (Names{"Device.B.1.", "Device.B.1.X"}));
    EXPECT_EQ(all(sample(), "Device.A.One"), Names{"Device.A.One"});
    EXPECT_EQ(all(sample(), "Device.A"), Names{});
    EXPECT_EQ(all(sample(), "Device.Nope."), Names{});
    EXPECT_EQ(parameters("Device.B."), (Names{"Device.B.1.X", "Device.B.10.X", "Device.B.2.X"}));
    EXPECT_EQ(parameters("Device.Empty."), Names{});
    EXPECT_EQ(parameters("Device.Bare"), Names{"Device.Bare"});
}

// What the next level leads to, from the empty path on, is the whole tree.
TEST(NameTreeTest, TheNextLevelWalksTheWholeTree) {
    const NameTree tree = sample();
    Names met, open{""};
    while (!open.empty()) {
        const std::string object = open.back();
        open.pop_back();
        for (const std::string& child : tree.childrenOf(object)) {
            met.push_back(child);
            if (NameTree::isObject(child)) open.push_back(child);
        }
    }
    std::sort(met.begin(), met.end());
    EXPECT_EQ(met, all(tree, ""));
    EXPECT_EQ(tree.childrenOf(""), Names{"Device."});
    EXPECT_EQ(tree.childrenOf("Device."),
              (Names{"Device.A.", "Device.B.", "Device.Bare", "Device.Empty."}));
}

TEST(NameTreeTest, NamesAreKnownAsWhatTheyAre) {
    const NameTree tree = sample();
    EXPECT_TRUE(tree.has(""));
    EXPECT_TRUE(tree.has("Device.B.10."));
    EXPECT_FALSE(tree.has("Device.B.1"));
    EXPECT_TRUE(tree.hasParameter("Device.Bare"));
    EXPECT_FALSE(tree.hasParameter("Device.A."));
    EXPECT_FALSE(tree.hasParameter(""));
}

TEST(NameTreeTest, OddNamesDoNoHarm) {
    const NameTree tree({"", ".", "..", "a", ".b", "a..b"});
    EXPECT_EQ(all(tree, ""), (Names{".", "..", ".b", "a", "a.", "a..", "a..b"}));
    EXPECT_FALSE(NameTree({}).has("Device."));
}

}  // namespace
