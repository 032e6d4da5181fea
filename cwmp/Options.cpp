#include "cwmp/Options.h"

#include "cwmp/Json.h"

#include <algorithm>
#include <iterator>

namespace cwmp {

namespace {

struct CallRow {
    const char* command;
    const char* group;  ///< empty for a command without one
    std::size_t fewest, most;
    const char* apply;  ///< what has to follow; null for nothing
};

constexpr CallRow kCalls[] = {
    {"inform", "device_id", 0, 0, nullptr},
    {"inform", "parameter", 0, 0, nullptr},
    {"get", "value", 1, 1, nullptr},
    {"get", "name", 1, 2, nullptr},
    {"get", "notification", 1, 1, nullptr},
    {"set", "value", 2, 2, "value"},
    {"set", "notification", 2, 2, "notification"},
    {"check_value_change", "", 0, 0, nullptr},
    {"update_value_change", "", 0, 0, nullptr},
};

using Words = std::vector<std::string>;

// The words behind command and class.
std::optional<Words> argumentsOf(const CallRow& row, const Words& words) {
    const std::size_t named = *row.group == '\0' ? 1 : 2;
    if (words.size() < named || words[0] != row.command) return std::nullopt;
    if (named == 2 && words[1] != row.group) return std::nullopt;
    const std::size_t count = words.size() - named;
    if (count < row.fewest || count > row.most) return std::nullopt;
    return Words(words.end() - static_cast<std::ptrdiff_t>(count), words.end());
}

std::string lineFor(const CallRow& row, const Words& arguments) {
    const std::string parameter = arguments.empty() ? "" : arguments[0];
    if (*row.group == '\0') return jsonLine({{"command", row.command}});
    // Names without a level: the whole branch.
    const std::string argument = arguments.size() > 1 ? arguments[1] : "0";
    return jsonLine({{"command", row.command},
                     {"class", row.group},
                     {"parameter", parameter},
                     {"argument", argument}});
}

}  // namespace

const char* const kUsage =
    "Usage: kelm-trd-cwmp --json-input\n"
    "       kelm-trd-cwmp COMMAND\n"
    "\n"
    "The back end of the CWMP client: gives it the daemon's parameters and its own settings.\n"
    "With --json-input it reads the client's commands from standard input. For people:\n"
    "\n"
    "  inform device_id             by what the ACS knows this box\n"
    "  inform parameter             what goes with every Inform\n"
    "  get value PATH               a parameter, or all of an object (its name ends with a point)\n"
    "  get name PATH [0|1]          the names, 1: those of the next level only\n"
    "  get notification PATH        what the ACS watches: 0 not, 1 with the next Inform, 2 at "
    "once\n"
    "  set value PARAMETER VALUE    as the ACS would, with the same checks\n"
    "  set notification PATH 0|1|2\n"
    "  check_value_change           what the ACS will be told, with nothing changed by looking\n"
    "  update_value_change          writes the file of watched parameters\n"
    "  --help, --version\n"
    "\n"
    "DBUS_SESSION_BUS_ADDRESS is the daemon's bus (else unix:path=/run/kelm-trd/bus), "
    "KELM_CWMP_WAIT\n"
    "the seconds to wait for the daemon (30). With --json-input the log goes to syslog unless\n"
    "KELM_LOG_SYSLOG=0. Exit status: 0, 1 when there was a fault, 2 for a wrong call.\n";

std::optional<std::vector<std::string>> linesFor(const Words& words) {
    for (const CallRow& row : kCalls) {
        const auto arguments = argumentsOf(row, words);
        if (!arguments) continue;
        Words lines{lineFor(row, *arguments)};
        if (row.apply != nullptr)
            lines.push_back(jsonLine({{"command", "apply"}, {"class", row.apply}}));
        return lines;
    }
    return std::nullopt;
}

}  // namespace cwmp
