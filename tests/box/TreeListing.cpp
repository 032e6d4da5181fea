#include "tests/box/TreeListing.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <vector>

#include <regex.h>

namespace TreeListing {

namespace {

constexpr std::size_t kMostShown = 10;

struct Line {
    std::string address;
    std::string settings;  // flags, type
    std::string value;

    std::string text() const { return address + settings + (value.empty() ? "" : " " + value); }
    bool operator<(const Line& other) const { return address < other.address; }
};
using Lines = std::vector<Line>;

// The value is the rest after the third blank; it may begin or end with blanks.
Line parseLine(const std::string& text) {
    Line line;
    std::size_t end = text.find(' ');
    line.address = text.substr(0, end);
    for (int word = 0; word < 2 && end != std::string::npos; ++word) end = text.find(' ', end + 1);
    line.settings = text.substr(line.address.size(), end - line.address.size());
    if (end != std::string::npos) line.value = text.substr(end + 1);
    return line;
}

Lines parse(const std::string& listing) {
    Lines lines;
    std::istringstream stream(listing);
    for (std::string text; std::getline(stream, text);)
        if (!text.empty() && text.front() != '#') lines.push_back(parseLine(text));
    return lines;
}

// A shape that is not a valid expression matches nothing, so that it shows.
bool matches(const std::string& value, const std::string& shape) {
    regex_t expression;
    if (regcomp(&expression, ("^(" + shape + ")$").c_str(), REG_EXTENDED | REG_NOSUB) != 0)
        return false;
    const bool matched = regexec(&expression, value.c_str(), 0, nullptr, 0) == 0;
    regfree(&expression);
    return matched;
}

bool agree(const Line& expected, const Line& line) {
    if (expected.settings != line.settings) return false;
    const bool isShape = !expected.value.empty() && expected.value.front() == '~';
    return isShape ? matches(line.value, expected.value.substr(1)) : expected.value == line.value;
}

// Both in the order of addresses, like the two halves of a merge.
std::vector<std::string> compare(const Lines& expected, const Lines& listing) {
    std::vector<std::string> found;
    auto left = expected.begin();
    auto right = listing.begin();
    while (left != expected.end() || right != listing.end()) {
        if (right == listing.end() || (left != expected.end() && *left < *right)) {
            found.push_back("missing:  " + (left++)->text() + "\n");
        } else if (left == expected.end() || *right < *left) {
            found.push_back("extra:    " + (right++)->text() + "\n");
        } else {
            if (!agree(*left, *right)) {
                found.push_back("expected: " + left->text() + "\nis:       " + right->text() +
                                "\n");
            }
            ++left;
            ++right;
        }
    }
    return found;
}

}  // namespace

std::string differences(const std::string& expected, const std::string& listing) {
    const Lines left = parse(expected);
    const Lines right = parse(listing);
    if (left.empty()) return "nothing is expected: no golden listing?\n";
    if (!std::is_sorted(left.begin(), left.end())) return "the golden listing is out of order\n";
    if (!std::is_sorted(right.begin(), right.end())) return "the listing is out of order\n";
    const std::vector<std::string> found = compare(left, right);
    std::string text;
    for (std::size_t i = 0; i < std::min(found.size(), kMostShown); ++i) text += found[i];
    if (found.size() > kMostShown)
        text += "and " + std::to_string(found.size() - kMostShown) + " more\n";
    return text;
}

}  // namespace TreeListing
