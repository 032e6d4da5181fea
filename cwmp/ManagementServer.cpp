#include "cwmp/ManagementServer.h"

#include "cwmp/Conversion.h"
#include "cwmp/DateTime.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>

namespace cwmp::management {

namespace {

struct ManagedRow {
    const char* name;    ///< below the branch
    const char* option;  ///< empty for what is put together
    bool isWritable;
    bool isForcedInform;
};

constexpr ManagedRow kRows[] = {
    {"ConnectionRequestPassword", "@local[0].password", true, false},
    {"ConnectionRequestURL", "", false, true},
    {"ConnectionRequestUsername", "@local[0].username", true, false},
    {"ParameterKey", kParameterKeyOption, false, true},
    {"Password", "@acs[0].password", true, false},
    {"PeriodicInformEnable", "@acs[0].periodic_enable", true, false},
    {"PeriodicInformInterval", "@acs[0].periodic_interval", true, false},
    {"PeriodicInformTime", "@acs[0].periodic_time", true, false},
    {"URL", "@acs[0].url", true, false},
    {"Username", "@acs[0].username", true, false},
};

const ManagedRow* find(const std::string& parameter) {
    const auto row = std::find_if(std::begin(kRows), std::end(kRows), [&](const ManagedRow& other) {
        return parameter == std::string(kBranch) + other.name;
    });
    return row == std::end(kRows) ? nullptr : row;
}

// scheme://something
bool looksLikeUrl(const std::string& text) {
    constexpr char kScheme[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-.";
    constexpr std::size_t kSeparatorLength = 3;
    const std::size_t end = text.find_first_not_of(kScheme);
    return end != std::string::npos && end > 0 && text.compare(end, kSeparatorLength, "://") == 0 &&
           text.size() > end + kSeparatorLength;
}

std::string connectionRequestUrl(const UciOptions& options) {
    const std::string address = firstAddressOf(firstOf(options, "@local[0].interface"));
    return address.empty() ? ""
                           : "http://" + address + ':' + firstOf(options, "@local[0].port") + '/';
}

}  // namespace

bool isManaged(const std::string& name) {
    return name.compare(0, sizeof kBranch - 1, kBranch) == 0;
}

std::vector<std::string> names() {
    std::vector<std::string> all{kBranch};
    for (const ManagedRow& row : kRows) all.push_back(std::string(kBranch) + row.name);
    return all;
}

bool isWritable(const std::string& parameter) {
    const ManagedRow* const row = find(parameter);
    return row != nullptr && row->isWritable;
}

bool isForcedInform(const std::string& parameter) {
    const ManagedRow* const row = find(parameter);
    return row != nullptr && row->isForcedInform;
}

std::string optionOf(const std::string& parameter) {
    const ManagedRow* const row = find(parameter);
    return row == nullptr ? "" : row->option;
}

std::optional<std::string> stored(const std::string& parameter, const std::string& text) {
    const Xsd type = typeOf(parameter);
    auto value = fromAcs(type, text);
    if (!value) return std::nullopt;
    if (type == Xsd::DateTime) return dateTimeToAcs(text);
    if (type == Xsd::UnsignedInt && *value == "0") return std::nullopt;
    if (optionOf(parameter) == "@acs[0].url" && !looksLikeUrl(text)) return std::nullopt;
    return value;
}

std::string value(const UciOptions& options, const std::string& parameter) {
    const std::string option = optionOf(parameter);
    return option.empty() ? connectionRequestUrl(options) : firstOf(options, option);
}

std::string firstAddressOf(const std::string& interface) {
    ifaddrs* all = nullptr;
    if (getifaddrs(&all) != 0) return {};
    std::array<char, INET_ADDRSTRLEN> text{};
    for (const ifaddrs* one = all; one != nullptr && text.front() == '\0'; one = one->ifa_next) {
        if (one->ifa_addr == nullptr || one->ifa_addr->sa_family != AF_INET ||
            interface != one->ifa_name)
            continue;
        const auto* const address = reinterpret_cast<const sockaddr_in*>(one->ifa_addr);
        inet_ntop(AF_INET, &address->sin_addr, text.data(), text.size());
    }
    freeifaddrs(all);
    return text.data();
}

}  // namespace cwmp::management
