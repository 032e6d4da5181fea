#include "trctl/SavedPart.h"

#include <algorithm>

namespace trctl {

namespace {

// The object right above, with its point; empty at the top.
std::string above(const std::string& address) {
    const std::size_t end = isObject(address) ? address.size() - 1 : address.size();
    const std::size_t point = end == 0 ? std::string::npos : address.rfind('.', end - 1);
    return point == std::string::npos ? "" : address.substr(0, point + 1);
}

bool isNumber(const std::string& address, std::size_t start) {
    const std::size_t end = address.size() - 1;
    return isObject(address) && start < end &&
           address.find_first_not_of("0123456789", start) == end;
}

// Takes the address and the objects above it, from below, until one was there before.
template <typename Take>
void eachLevel(std::string address, Take take) {
    while (!address.empty() && take(address)) address = above(address);
}

// The object that holds both.
std::string commonObject(const std::string& left, const std::string& right) {
    const auto differ = std::mismatch(left.begin(), left.end(), right.begin(), right.end()).first;
    const std::string common(left.begin(), differ);
    return isObject(common) ? common : above(common);
}

}  // namespace

SavedPart::SavedPart(const Addresses& saved, const Addresses& now) {
    for (const std::string& address : saved) {
        root_ = saved_.empty() ? address : commonObject(root_, address);
        eachLevel(address, [&](const std::string& each) { return saved_.insert(each).second; });
    }
    for (const std::string& address : now) count(address);
}

void SavedPart::count(const std::string& parameter) {
    eachLevel(
        parameter,
        [&](const std::string& each) {
            const std::string object = above(each);
            Level& level = levels_[object];
            ++level.parameters;
            level.savedParameters += saved_.count(parameter);
            if (!counted_.insert(each).second) return true;
            ++level.names;
            level.savedNames += saved_.count(each);
            level.hasNumbersOnly = level.hasNumbersOnly && isNumber(each, object.size());
            return true;
        });
}

bool SavedPart::covers(const std::string& address) {
    if (!isObject(root_) || address.compare(0, root_.size(), root_) != 0) return false;
    std::string object = above(address);
    while (saved_.count(object) == 0) object = above(object);
    return isWhole(object);
}

bool SavedPart::isWhole(const std::string& object) {
    const auto known = whole_.find(object);
    if (known != whole_.end()) return known->second;
    const Level& level = levels_[object];
    bool is = level.savedNames * 2 > level.names && level.savedParameters * 2 > level.parameters;
    if (level.hasNumbersOnly || level.names == 1)
        is = object.size() <= root_.size() || isWhole(above(object));
    return whole_[object] = is;
}

}  // namespace trctl
