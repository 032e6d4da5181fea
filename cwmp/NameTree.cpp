#include "cwmp/NameTree.h"

#include <algorithm>

namespace cwmp {

namespace {

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

std::size_t commonLength(const std::string& one, const std::string& other) {
    const auto places = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    return static_cast<std::size_t>(places.first - one.begin());
}

}  // namespace

NameTree::NameTree(Names names) : names_(std::move(names)) {
    names_.erase(std::remove(names_.begin(), names_.end(), std::string()), names_.end());
    std::sort(names_.begin(), names_.end());
    names_.erase(std::unique(names_.begin(), names_.end()), names_.end());
}

bool NameTree::has(const std::string& name) const {
    if (name.empty()) return true;
    const auto place = std::lower_bound(names_.begin(), names_.end(), name);
    return place != names_.end() &&
           (*place == name || (isObject(name) && startsWith(*place, name)));
}

bool NameTree::hasParameter(const std::string& name) const {
    return !isObject(name) && has(name);
}

std::pair<NameTree::Place, NameTree::Place> NameTree::listedWithin(const std::string& name) const {
    const auto first = std::lower_bound(names_.begin(), names_.end(), name);
    const auto isWithin = [&](const std::string& other) {
        return isObject(name) ? startsWith(other, name) : other == name;
    };
    return {first, std::find_if_not(first, names_.end(), isWithin)};
}

std::vector<const std::string*> NameTree::parametersWithin(const std::string& name) const {
    std::vector<const std::string*> parameters;
    const auto [first, last] = listedWithin(name);
    for (auto place = first; place != last; ++place)
        if (!isObject(*place)) parameters.push_back(&*place);
    return parameters;
}

NameTree::Names NameTree::within(const std::string& name) const {
    Names all;
    std::string previous;
    const auto [first, last] = listedWithin(name);
    for (auto place = first; place != last; ++place) {
        // All that is in an object stands together, so only what the name before shares is there.
        std::size_t point = place->find('.', commonLength(*place, previous));
        for (; point + 1 < place->size() && point != std::string::npos;
             point = place->find('.', point + 1))
            if (point + 1 >= name.size()) all.push_back(place->substr(0, point + 1));
        all.push_back(*place);
        previous = *place;
    }
    return all;
}

NameTree::Names NameTree::childrenOf(const std::string& object) const {
    Names children;
    for (std::string& name : within(object)) {
        const std::size_t point = name.find('.', object.size());
        const bool isDirect = point == std::string::npos || point + 1 == name.size();
        if (name.size() > object.size() && isDirect) children.push_back(std::move(name));
    }
    return children;
}

}  // namespace cwmp
