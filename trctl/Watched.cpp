#include "trctl/Watched.h"

#include "client/Json.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace trctl {

namespace {

constexpr char kNotificationFile[] = "/tmp/.easycwmp_notif_param_value";

}  // namespace

Watched::Watched() {
    std::FILE* const file = std::fopen(kNotificationFile, "re");
    if (file == nullptr) return;
    isKnown_ = true;
    char* line = nullptr;
    std::size_t size = 0;
    for (ssize_t length = 0; (length = getline(&line, &size, file)) > 0;)
        add(std::string(line, static_cast<std::size_t>(length)));
    if (std::ferror(file) != 0) isKnown_ = false;
    std::free(line);
    std::fclose(file);
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
