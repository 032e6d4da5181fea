#include "cwmp/Snapshot.h"

#include "cwmp/Json.h"
#include "stb/src/common/Text.h"

#include <utility>

namespace cwmp {

std::string formatRow(const Row& row) {
    return jsonLine({{"parameter", row.parameter},
                     {"value", row.value},
                     {"notification", row.notification},
                     {"type", row.type}});
}

std::string formatRows(const Rows& rows) {
    std::string text;
    for (const Row& row : rows) text += formatRow(row) + '\n';
    return text;
}

Rows parseRows(const std::string& text) {
    Rows rows;
    for (const std::string& line : TR::Utils::splitLines(text, TR::Utils::LineFeeds::Drop)) {
        auto texts = parseLine(line);
        if (!texts || texts->count("parameter") == 0 || texts->count("value") == 0) continue;
        Texts& row = *texts;
        rows.push_back({row["parameter"], row["value"], row["notification"], row["type"]});
    }
    return rows;
}

KnownRows byParameter(Rows rows) {
    KnownRows known;
    for (Row& row : rows) {
        const std::string parameter = row.parameter;
        known.emplace(parameter, std::move(row));
    }
    return known;
}

Rows changedSince(const KnownRows& earlier, const Rows& today) {
    Rows changed;
    for (const Row& row : today) {
        const auto before = earlier.find(row.parameter);
        if (before != earlier.end() && before->second.value != row.value) changed.push_back(row);
    }
    return changed;
}

}  // namespace cwmp
