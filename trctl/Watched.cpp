#include "trctl/Watched.h"

#include "client/Json.h"
#include "stb/src/common/Files.h"
#include "stb/src/common/Text.h"

#include <unistd.h>

namespace trctl {

namespace {

constexpr char kNotificationFile[] = "/tmp/.easycwmp_notif_param_value";

}  // namespace

Watched::Watched() {
    if (access(kNotificationFile, R_OK) == 0) add(TR::Utils::getFileContent(kNotificationFile));
}

Watched::Watched(const std::string& rows) {
    add(rows);
}

void Watched::add(const std::string& rows) {
    isKnown_ = true;
    for (const std::string& line : TR::Utils::splitLines(rows, TR::Utils::LineFeeds::Drop)) {
        std::string error;
        auto row = client::parseSaved(line, error);
        const bool isRow = row && row->count("parameter") != 0 && row->count("notification") != 0;
        if (!isRow)
            isKnown_ = false;
        else if ((*row)["notification"] != "0")
            parameters_.insert((*row)["parameter"]);
    }
}

std::optional<bool> Watched::has(const std::string& parameter) const {
    if (parameters_.count(parameter) != 0) return true;
    return isKnown_ ? std::optional<bool>(false) : std::nullopt;
}

}  // namespace trctl
