#include "providers/FrontEndParsing.h"

#include "stb/src/common/NSRegExp.h"

#include <sstream>

namespace TR::Igmp {

namespace {

constexpr char kForcedVersionKey[] = "net.ipv4.conf.default.force_igmp_version";
constexpr char kMaximumMembershipsKey[] = "net.ipv4.igmp_max_memberships";

// Not anchored: netstat puts a port behind the address, and "::ffff:" before a mapped one.
constexpr char kGroupAddress[] =
    R"(2(2[4-9]|3[0-9]{1})(\.(25[0-5]|2[0-4][0-9]{1}|1[0-9]{2}|[1-9][0-9]?|0)){3})";

bool contains(const std::string& line, const char* text) {
    return line.find(text) != std::string::npos;
}

std::uint32_t* settingOf(const std::string& line, KernelSettings& settings) {
    if (contains(line, kForcedVersionKey)) return &settings.forcedVersion;
    if (contains(line, kMaximumMembershipsKey)) return &settings.maximumMemberships;
    return nullptr;
}

// The second field between equals signs; a run of signs counts as one. Empty without a second
// field.
std::string secondField(const std::string& line) {
    const std::size_t firstField = line.find_first_not_of('=');
    const std::size_t firstEnd = line.find('=', firstField);
    const std::size_t start = line.find_first_not_of('=', firstEnd);
    if (start == std::string::npos) return {};
    return line.substr(start, line.find('=', start) - start);
}

}  // namespace

KernelSettings kernelSettings(const std::vector<std::string>& sysctlLines) {
    KernelSettings settings;
    for (const std::string& line : sysctlLines) {
        std::uint32_t* const setting = settingOf(line, settings);
        // The stream's rules apply: other text reads as 0, a number out of range as the largest
        // one, and a blank field leaves the setting unchanged.
        if (setting != nullptr) std::istringstream(secondField(line)) >> *setting;
    }
    return settings;
}

std::set<std::string> groupAddresses(const std::vector<std::string>& netstatLines) {
    const NSRegExp groupAddress(kGroupAddress);
    std::set<std::string> addresses;
    std::vector<std::string> match;
    for (const std::string& line : netstatLines)
        if (contains(line, "udp") && groupAddress.match(line, match)) addresses.insert(match[0]);
    return addresses;
}

}  // namespace TR::Igmp
