#include "cwmp/Snapshot.h"

#include "cwmp/Json.h"
#include "stb/src/common/Text.h"

#include <string_view>
#include <unordered_map>

namespace cwmp {

namespace {

using Known = std::unordered_map<std::string_view, const std::string*>;

Known valuesOf(const Rows& rows) {
    Known known;
    for (const Row& row : rows) known.emplace(row.parameter, &row.value);
    return known;
}

}  // namespace

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

Rows changedSince(const Rows& earlier, const Rows& today) {
    const Known known = valuesOf(earlier);
    Rows changed;
    for (const Row& row : today) {
        const auto before = known.find(row.parameter);
        if (before != known.end() && *before->second != row.value) changed.push_back(row);
    }
    return changed;
}

Rows withKnownValues(const Rows& earlier, Rows today) {
    const Known known = valuesOf(earlier);
    for (Row& row : today) {
        const auto before = known.find(row.parameter);
        if (before != known.end()) row.value = *before->second;
    }
    return today;
}

}  // namespace cwmp
