#include "providers/FrontEndDataProvider.h"

#include "model/Storage.h"
#include "providers/FrontEndParsing.h"
#include "stb/src/common/Commands.h"
#include "stb/src/common/Text.h"

#include <utility>

namespace TR {

namespace {

const std::string kPrefix = "Device.Services.STBService.1.Components.FrontEnd.1.IP.IGMP.";

constexpr const char* kObjects[] = {
    "Device.Services.STBService.1.Components.",
    "Device.Services.STBService.1.Components.FrontEnd.",
    "Device.Services.STBService.1.Components.FrontEnd.1.",
    "Device.Services.STBService.1.Components.FrontEnd.1.IP.",
    "Device.Services.STBService.1.Components.FrontEnd.1.IP.IGMP.",
};

constexpr char kGroupCount[] = "ClientGroupNumberOfEntries";

Address igmpAddress(const std::string& name) {
    return Address(kPrefix + name);
}

Address groupAddress(unsigned instance, const char* name) {
    return igmpAddress(Utils::format("ClientGroup.%u.%s", instance, name));
}

}  // namespace

void FrontEndDataProvider::FrontEnd::IGMP::setJoinedGroups(const std::set<std::string>& addresses,
                                                           const NSTime& now) {
    std::set<ClientGroup> joined;
    for (const std::string& address : addresses) {
        const auto known = clientGroups.find({address, now});
        joined.insert(known == clientGroups.end() ? ClientGroup{address, now} : *known);
    }
    clientGroups = std::move(joined);
    ClientGroupNumberOfEntries = static_cast<std::uint32_t>(clientGroups.size());
}

void FrontEndDataProvider::init() {
    FrontEnd::IGMP& igmp = frontEnd_.igmp;
    const auto kernel = Igmp::kernelSettings(Utils::processPipe("sysctl -a | grep igmp"));
    igmp.clientVersion = kernel.forcedVersion;
    igmp.MaximumNumberOfConcurrentGroups = kernel.maximumMemberships;
    if (storage() == nullptr) return;
    const std::pair<const char*, Value> parameters[] = {
        {"Enable", Value(igmp.Enable)},
        {"Status", Value(igmp.Status)},
        {"MaximumNumberOfConcurrentGroups", Value(igmp.MaximumNumberOfConcurrentGroups)},
        {"MaximumNumberOfTrackedGroups", Value(igmp.MaximumNumberOfTrackedGroups)},
        {"LoggingEnable", Value(igmp.LoggingEnable)},
        {"DSCPMark", Value(igmp.DSCPMark)},
        {"VLANIDMark", Value(igmp.VLANIDMark)},
        {"EthernetPriorityMark", Value(igmp.EthernetPriorityMark)},
        {"ClientVersion", Value(Utils::format("v%u", igmp.clientVersion))},
        {kGroupCount, Value(igmp.ClientGroupNumberOfEntries)},
        {"ClientGroupStatsNumberOfEntries", Value(igmp.ClientGroupStatsNumberOfEntries)},
    };
    const pthread_helper::scoped_lock lock(storage()->getStorageMutex());
    for (const auto& [name, value] : parameters) storage()->set(igmpAddress(name), value);
}

bool FrontEndDataProvider::load() {
    const auto addresses = Igmp::groupAddresses(Utils::processPipe("netstat -aun"));
    frontEnd_.igmp.setJoinedGroups(addresses, NSTime::nowRelative());
    return true;
}

bool FrontEndDataProvider::store() {
    if (storage() == nullptr) return false;
    const pthread_helper::scoped_lock lock(storage()->getStorageMutex());
    for (const char* path : kObjects) storage()->set(Address(path), Value::Object());
    removePublishedGroups();
    publishGroups();
    return true;
}

void FrontEndDataProvider::removePublishedGroups() {
    const std::int64_t oldCount = (*storage())[igmpAddress(kGroupCount)].getInt64();
    for (unsigned instance = 1; instance <= oldCount; ++instance) {
        storage()->remove(groupAddress(instance, "GroupAddress"));
        storage()->remove(groupAddress(instance, "UpTime"));
    }
}

// Assigned, not set: zapping must not record changes, which would wake a watching client in every
// cycle.
void FrontEndDataProvider::publishGroups() {
    const FrontEnd::IGMP& igmp = frontEnd_.igmp;
    (*storage())[igmpAddress(kGroupCount)] = Value(igmp.ClientGroupNumberOfEntries);
    const NSTime now = NSTime::nowRelative();
    for (const auto& group : igmp.clientGroups) {
        // Every group goes to instance 1, on purpose: the ACS sees one row, the last group in text
        // order, beside a count of them all.
        (*storage())[groupAddress(1, "GroupAddress")] = Value(group.groupAddress);
        (*storage())[groupAddress(1, "UpTime")] = Value((now - group.firstSeen).toTimeT());
    }
}

}  // namespace TR
