#include "client/BusAddress.h"

#include "client/ShellWords.h"
#include "stb/src/common/Text.h"

#include <cstdlib>
#include <fstream>

namespace client {

namespace {

constexpr char kVariable[] = "DBUS_SESSION_BUS_ADDRESS";
constexpr char kSettings[] = "/etc/default/kelm-trd";
constexpr std::size_t kLargestSettings = std::size_t{64} << 10U;

std::string settingsText() {
    std::ifstream file(kSettings);
    std::string text(kLargestSettings, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

}  // namespace

std::string busAddressIn(const std::string& settings) {
    const std::string start = std::string(kVariable) + '=';
    std::string address;
    for (const std::string& line : TR::Utils::splitLines(settings, TR::Utils::LineFeeds::Drop)) {
        const auto words = shellWords(TR::Utils::trim(line)).words;
        const std::string& word =
            words.front() == "export" && words.size() > 1 ? words[1] : words[0];
        if (word.compare(0, start.size(), start) == 0) address = word.substr(start.size());
    }
    return address;
}

std::vector<BusPlace> busPlaces(const std::string& given) {
    if (!given.empty()) return {{given, "--bus"}};
    const char* const variable = std::getenv(kVariable);  // NOLINT(concurrency-mt-unsafe)
    if (variable != nullptr && *variable != '\0') return {{variable, kVariable}};
    const std::string set = busAddressIn(settingsText());
    std::vector<BusPlace> places;
    if (!set.empty()) places.push_back({set, kSettings});
    places.push_back({kPackagedBus, "kelm-trd-bus"});
    return places;
}

}  // namespace client
