#include "trctl/Paths.h"

#include "trctl/Pattern.h"

#include <algorithm>
#include <functional>
#include <set>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace trctl {

namespace {

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

using Take = std::function<void(const std::string&)>;

// The list is in order, so what begins alike stands together.
void eachBeneath(const Addresses& sorted, const std::string& start, const Take& take) {
    for (auto at = std::lower_bound(sorted.begin(), sorted.end(), start);
         at != sorted.end() && startsWith(*at, start); ++at)
        if (*at != start) take(*at);
}

// A pattern without a point at its end names objects by their names alone, as a shell's does.
bool isNamedBy(const Pattern& pattern, const std::string& path, std::string_view address) {
    if (!isObject(path) && !address.empty() && address.back() == '.') address.remove_suffix(1);
    return pattern.matches(address);
}

void eachMatch(const Addresses& sorted, const std::string& path, bool beneath, const Take& take) {
    if (std::binary_search(sorted.begin(), sorted.end(), path) && !(beneath && isObject(path))) {
        take(path);
        return;
    }
    if (Pattern::isPattern(path)) {
        const Pattern pattern(path, beneath && isObject(path));
        for (const std::string& address : sorted)
            if (isNamedBy(pattern, path, address)) take(address);
    } else if (beneath && isObject(path)) {
        eachBeneath(sorted, path, take);
    }
}

Selection selectFrom(Addresses listed, const Addresses& paths, bool beneath) {
    std::sort(listed.begin(), listed.end());
    if (paths.empty()) return {std::move(listed), {}};
    Selection selection;
    std::unordered_set<std::string> taken;
    for (const std::string& path : paths) {
        bool any = false;
        eachMatch(listed, path, beneath, [&](const std::string& address) {
            any = true;
            if (taken.insert(address).second) selection.found.push_back(address);
        });
        if (!any) selection.unmatched.push_back(path);
    }
    return selection;
}

}  // namespace

Selection select(Addresses listed, const Addresses& paths) {
    return selectFrom(std::move(listed), paths, true);
}

Selection selectThemselves(Addresses listed, const Addresses& paths) {
    return selectFrom(std::move(listed), paths, false);
}

namespace {

// Also the objects that are not listed themselves.
std::set<std::string> objectsThatMatch(const Addresses& listed, const std::string& path) {
    const Pattern pattern(path);
    std::set<std::string> objects;
    std::set<std::string> others;
    for (const std::string& address : listed)
        for (std::size_t point = address.rfind('.'); point != std::string::npos;
             point = point == 0 ? std::string::npos : address.rfind('.', point - 1)) {
            const std::string object = address.substr(0, point + 1);
            if (objects.count(object) + others.count(object) != 0) break;
            (pattern.matches(object) ? objects : others).insert(object);
        }
    return objects;
}

}  // namespace

Addresses without(Addresses found, const Addresses& paths) {
    if (paths.empty()) return found;
    const Addresses named = select(found, paths).found;
    const std::unordered_set<std::string> out(named.begin(), named.end());
    const auto isNamed = [&](const std::string& address) { return out.count(address) != 0; };
    found.erase(std::remove_if(found.begin(), found.end(), isNamed), found.end());
    return found;
}

Addresses nextLevel(Addresses listed, const Addresses& objects) {
    std::sort(listed.begin(), listed.end());
    Addresses level;
    const auto beneath = [&](const std::string& start) {
        eachBeneath(listed, start, [&](const std::string& address) {
            const std::size_t point = address.find('.', start.size());
            std::string next = address.substr(0, point == std::string::npos ? point : point + 1);
            if (level.empty() || level.back() != next) level.push_back(std::move(next));
        });
    };
    if (objects.empty()) beneath("");
    for (const std::string& object : objects) {
        if (!isObject(object)) continue;
        beneath(object);
        if (!Pattern::isPattern(object)) continue;
        for (const std::string& match : objectsThatMatch(listed, object))
            if (match != object) beneath(match);
    }
    return level;
}

bool isObject(const std::string& path) {
    return !path.empty() && path.back() == '.';
}

}  // namespace trctl
