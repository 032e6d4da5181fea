#pragma once

#include <map>
#include <string>
#include <vector>

namespace cwmp {

/// A watched parameter, as it stands in the notification file and in the answer to a check.
struct Row {
    std::string parameter, value, notification, type;
};
using Rows = std::vector<Row>;

/// One line, without its line feed; the keys are in the order in which the daemon reads them.
std::string formatRow(const Row& row);
std::string formatRows(const Rows& rows);
/// A line that is not a row is left out.
Rows parseRows(const std::string& text);

/// Rows by their parameter; of two with the same the first counts.
using KnownRows = std::map<std::string, Row>;
KnownRows byParameter(Rows rows);

/// The rows of today whose value is another one than in the earlier rows. A parameter that was not
/// watched then has no change.
Rows changedSince(const KnownRows& earlier, const Rows& today);

}  // namespace cwmp
