#include "trctl/Watched.h"

#include "client/Json.h"
#include "stb/src/common/Files.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <unistd.h>

namespace trctl {

namespace {

constexpr char kNotificationFile[] = "/tmp/.easycwmp_notif_param_value";

}  // namespace

Watched::Watched() {
    std::error_code error;
    isKnown_ = std::filesystem::is_regular_file(kNotificationFile, error) &&
               access(kNotificationFile, R_OK) == 0;
    for (const std::string& row : TR::Utils::getFileContents(kNotificationFile)) add(row);
}

Watched::Watched(const std::vector<std::string>& rows) : isKnown_(true) {
    for (const std::string& row : rows) add(row);
}

void Watched::add(const std::string& row) {
    std::string error;
    const auto texts = client::parseSaved(row, error);
    if (!texts || texts->count("parameter") == 0 || texts->count("notification") == 0)
        isKnown_ = false;
    else if (texts->at("notification") != "0")
        parameters_.push_back(texts->at("parameter"));
}

std::optional<bool> Watched::has(const std::string& parameter) const {
    if (std::find(parameters_.begin(), parameters_.end(), parameter) != parameters_.end())
        return true;
    return isKnown_ ? std::optional<bool>(false) : std::nullopt;
}

}  // namespace trctl
