#include "cwmp/Attributes.h"

#include <algorithm>

namespace cwmp {

void Attributes::add(const std::string& name, int notification) {
    int& entry = entries_[name];
    entry = std::max(entry, notification);
}

int Attributes::of(const std::string& name) const {
    std::string key = name;
    while (true) {
        const auto entry = entries_.find(key);
        if (entry != entries_.end()) return entry->second;
        if (key.size() < 2) return kOff;
        const std::size_t point = key.rfind('.', key.size() - 2);
        if (point == std::string::npos) return kOff;
        key.resize(point + 1);
    }
}

std::vector<Attributes::Step> Attributes::set(const std::string& name, int notification) {
    std::vector<Step> steps;
    const bool isObject = !name.empty() && name.back() == '.';
    for (auto entry = entries_.lower_bound(name); entry != entries_.end();) {
        const bool isBelow = isObject && entry->first.compare(0, name.size(), name) == 0;
        if (!isBelow && entry->first != name) break;
        steps.push_back({false, entry->second, entry->first});
        entry = entries_.erase(entry);
    }
    if (of(name) != notification) {
        steps.push_back({true, notification, name});
        entries_[name] = notification;
    }
    return steps;
}

}  // namespace cwmp
