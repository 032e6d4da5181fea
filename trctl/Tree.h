#pragma once

#include <string>
#include <vector>

namespace trctl {

/// One address of a tree and what to write beside it; objects, which end with a point, have
/// nothing.
struct Leaf {
    std::string address;
    std::string value;
};

/// What a tree is drawn with, four columns each.
struct Strokes {
    const char* branch;
    const char* lastBranch;
    const char* trunk;
    const char* gap;
};
extern const Strokes kUnicodeStrokes;
extern const Strokes kAsciiStrokes;

/// A line of a drawn tree, not escaped: `ahead` is made of strokes, the name and the value are the
/// daemon's.
struct TreeLine {
    std::string ahead;
    std::string name;
    std::string value;
    bool isLeaf;
};

/// Draws what the addresses have beneath \p root, which ends with a point, or all of them when it
/// is empty. Numbers are in the order of numbers.
std::vector<TreeLine> drawTree(const std::vector<Leaf>& leaves, const std::string& root,
                               const Strokes& strokes);

}  // namespace trctl
