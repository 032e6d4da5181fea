#include "trctl/Tree.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace trctl {

const Strokes kUnicodeStrokes = {"├── ", "└── ", "│   ", "    "};
const Strokes kAsciiStrokes = {"|-- ", "`-- ", "|   ", "    "};

namespace {

bool isNumber(const std::string& name) {
    return !name.empty() &&
           std::all_of(
               name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// The names of a level: "2." comes before "10.".
struct NaturalLess {
    static std::string bare(const std::string& name) { return name.substr(0, name.find('.')); }

    bool operator()(const std::string& left, const std::string& right) const {
        const std::string a = bare(left), b = bare(right);
        if (isNumber(a) && isNumber(b) && a.size() != b.size()) return a.size() < b.size();
        return left < right;
    }
};

struct Node {
    std::map<std::string, Node, NaturalLess> children;
    std::optional<std::string> value;
};

// "Device.", "IP.", "Status" of Device.IP.Status, one after the other.
std::string takeName(const std::string& address, std::size_t& at) {
    const std::size_t point = address.find('.', at);
    const std::size_t end = point == std::string::npos ? address.size() : point + 1;
    std::string name = address.substr(at, end - at);
    at = end;
    return name;
}

void insert(Node& top, const Leaf& leaf, std::size_t start) {
    Node* node = &top;
    std::size_t at = start;
    while (at < leaf.address.size()) node = &node->children[takeName(leaf.address, at)];
    if (leaf.address.back() != '.') node->value = leaf.value;
}

void draw(const Node& node, const std::string& ahead, const Strokes& strokes,
          std::vector<TreeLine>& lines) {
    std::size_t left = node.children.size();
    for (const auto& [name, child] : node.children) {
        const bool isLast = --left == 0;
        lines.push_back({ahead + (isLast ? strokes.lastBranch : strokes.branch), name,
                         child.value.value_or(""), child.value.has_value()});
        draw(child, ahead + (isLast ? strokes.gap : strokes.trunk), strokes, lines);
    }
}

}  // namespace

std::vector<TreeLine> drawTree(const std::vector<Leaf>& leaves, const std::string& root,
                               const Strokes& strokes) {
    Node top;
    for (const Leaf& leaf : leaves) {
        if (leaf.address.size() <= root.size() || leaf.address.compare(0, root.size(), root) != 0)
            continue;
        insert(top, leaf, root.size());
    }
    std::vector<TreeLine> lines;
    if (!root.empty()) {
        lines.push_back({"", root, "", false});
        draw(top, "", strokes, lines);
        return lines;
    }
    // Without a root the first level has no strokes.
    for (const auto& [name, child] : top.children) {
        lines.push_back({"", name, child.value.value_or(""), child.value.has_value()});
        draw(child, "", strokes, lines);
    }
    return lines;
}

}  // namespace trctl
