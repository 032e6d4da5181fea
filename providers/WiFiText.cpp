#include "providers/NetworkText.h"
#include "stb/src/common/NSRegExp.h"
#include "stb/src/common/Text.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace TR::NetworkText {

namespace {

using WiFiConfig = NetworkDataProvider::Interface::WiFiConfig;
using WiFiStatus = NetworkDataProvider::Interface::WiFiStatus;

constexpr char kBssid[] = "([a-fA-F0-9]{2}:?){6}";

struct ConfigRow {
    const char* key;
    std::string WiFiConfig::*text;
};

constexpr ConfigRow kConfigRows[] = {
    {"wifi_ssid", &WiFiConfig::ssid},
    {"wifi_wpa_passphrase", &WiFiConfig::wpaPassphrase},
    {"wifi_wep_passphrase", &WiFiConfig::wepPassphrase},
};

struct NumberRow {
    const char* key;
    std::int64_t WiFiStatus::*number;
    std::int64_t smallest;
};

constexpr NumberRow kNumberRows[] = {
    {"freq", &WiFiStatus::frequency, 0},
    {"signal", &WiFiStatus::signal, std::numeric_limits<std::int64_t>::min()},
    {"tx bitrate", &WiFiStatus::bitRate, 0},
};

struct KeyAndRest {
    std::string key;   // lower case, without white space round it; empty without a separator
    std::string rest;  // all that follows the separator
};

KeyAndRest split(const std::string& line, char separator) {
    const std::size_t end = line.find(separator);
    if (end == std::string::npos) return {};
    return {Utils::toLowerString(Utils::trim(line.substr(0, end))), line.substr(end + 1)};
}

void readSetting(const std::string& line, WiFiConfig& config) {
    // A comment makes a key that begins with its sign, which is not in the table.
    const KeyAndRest setting = split(line, '=');
    for (const ConfigRow& row : kConfigRows)
        if (setting.key == row.key) config.*row.text = setting.rest;
}

// The tool puts one blank behind the colon; further ones belong to the network's name.
std::string ssid(std::string rest) {
    if (!rest.empty() && rest.back() == '\n') rest.pop_back();
    return !rest.empty() && rest.front() == ' ' ? rest.substr(1) : rest;
}

void readField(const std::string& line, WiFiStatus& status) {
    const KeyAndRest field = split(line, ':');
    if (field.key == "ssid") status.ssid = ssid(field.rest);
    for (const NumberRow& row : kNumberRows) {
        if (field.key != row.key) continue;
        status.*row.number = std::max(row.smallest, Utils::leadingNumber(field.rest).value_or(0));
    }
}

std::string bssid(const std::vector<std::string>& lines) {
    static const NSRegExp expression(kBssid);
    std::vector<std::string> match;
    for (const std::string& line : lines)
        if (expression.match(line, match)) return Utils::toUpperString(match.front());
    return {};
}

}  // namespace

WiFiConfig wiFiConfig(const std::vector<std::string>& lines) {
    WiFiConfig config;
    for (const std::string& line : lines) readSetting(line, config);
    return config;
}

WiFiStatus wiFiStatus(const std::vector<std::string>& lines) {
    WiFiStatus status;
    for (const std::string& line : lines) readField(line, status);
    status.bssid = bssid(lines);
    return status;
}

}  // namespace TR::NetworkText
