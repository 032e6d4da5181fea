#include "tests/support/TreeListing.h"

#include <map>
#include <sstream>

#include <regex.h>

namespace TreeListing {

namespace {

struct Entry {
    std::string settings;  // flags, type
    std::string value;     // with the blank before it

    std::string text() const { return settings + value; }
};
using Entries = std::map<std::string, Entry>;

Entries parse(const std::string& listing) {
    Entries entries;
    std::istringstream stream(listing);
    for (std::string line; std::getline(stream, line);) {
        if (line.empty() || line.front() == '#') continue;
        std::istringstream words(line);
        std::string address, flags, type, value;
        words >> address >> flags >> type;
        std::getline(words, value);
        entries[address] = {" " + flags + " " + type, value};
    }
    return entries;
}

// A shape that is not a valid expression matches nothing, so that it shows.
bool matches(const std::string& value, const std::string& shape) {
    regex_t expression;
    if (regcomp(&expression, ("^ (" + shape + ")$").c_str(), REG_EXTENDED | REG_NOSUB) != 0)
        return false;
    const bool matched = regexec(&expression, value.c_str(), 0, nullptr, 0) == 0;
    regfree(&expression);
    return matched;
}

bool agree(const Entry& expected, const Entry& entry) {
    if (expected.settings != entry.settings) return false;
    const bool isShape = expected.value.rfind(" ~", 0) == 0;
    return isShape ? matches(entry.value, expected.value.substr(2)) : expected.value == entry.value;
}

}  // namespace

std::string differences(const std::string& expected, const std::string& listing) {
    const Entries left = parse(expected);
    const Entries right = parse(listing);
    if (left.empty()) return "nothing is expected: no golden listing?\n";
    std::string text;
    for (const auto& [address, entry] : left) {
        const auto found = right.find(address);
        if (found == right.end())
            text += "missing:  " + address + entry.text() + "\n";
        else if (!agree(entry, found->second))
            text += "expected: " + address + entry.text() + "\nis:       " + address +
                    found->second.text() + "\n";
    }
    for (const auto& [address, entry] : right)
        if (left.count(address) == 0) text += "extra:    " + address + entry.text() + "\n";
    return text;
}

}  // namespace TreeListing
