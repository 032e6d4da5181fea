#include "trctl/Reader.h"
#include "trctl/Saved.h"
#include "trctl/Set.h"

#include <algorithm>
#include <unordered_set>

namespace trctl {

namespace {

// What kelm-trd-snapshot writes in the place of a secret.
constexpr char kMask[] = "********";
// What the bus has in the place of a byte that is not UTF-8.
constexpr char kReplacement[] = "\xEF\xBF\xBD";

bool has(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

/// Saved parameters that are not written, counted by the reason.
struct LeftAlone {
    std::size_t gone = 0;
    std::size_t readOnly = 0;
    std::size_t masked = 0;
    std::size_t garbled = 0;

    void report() const {
        const auto line = [](std::size_t count, const std::string& what) {
            if (count != 0) complain("left alone: " + std::to_string(count) + ' ' + what);
        };
        line(readOnly, "read-only that differ");
        line(gone, "that no longer exist");
        line(masked, "whose saved values are masked (********)");
        line(garbled, "whose saved values are not as they were (U+FFFD)");
    }
};

// What differs and may be written, before the first is.
std::vector<Difference> plan(Context& context, const Saved& saved, const Addresses& chosen,
                             Reader& reader, LeftAlone& left) {
    const Addresses list = context.daemon.parameters();
    const std::unordered_set<std::string> listed(list.begin(), list.end());
    std::vector<Difference> differences;
    for (const std::string& address : chosen) {
        if (listed.count(address) == 0) {
            ++left.gone;
            continue;
        }
        const std::string& wanted = saved.at(address);
        const auto now = reader.value(address);
        if (!now || *now == wanted) continue;
        if (!context.daemon.isWritable(address))
            ++left.readOnly;
        else if (has(wanted, kMask))
            ++left.masked;
        else if (has(wanted, kReplacement))
            ++left.garbled;
        else
            differences.push_back({address, wanted, now});
    }
    return differences;
}

int write(Context& context, const std::vector<Difference>& differences) {
    std::vector<Assignment> assignments;
    for (const Difference& difference : differences) {
        if (context.options.dryRun) printDifference(context, difference);
        assignments.push_back({difference.address, *difference.file});
    }
    if (context.options.dryRun) return kDone;
    return writeAll(context, assignments, [&](const Written& written) {
        const Assignment& assignment = written.assignment;
        printDifference(context, {assignment.path, assignment.value, written.before});
    });
}

}  // namespace

int restore(Context& context) {
    const auto saved = readSaved(context);
    if (!saved) return kUsage;
    Addresses keys = keysOf(*saved);
    const Selection chosen = select(keys, context.options.paths);
    Reader reader(context.daemon);
    LeftAlone left;
    const auto differences = plan(context, *saved, chosen.found, reader, left);
    int status = std::max(reader.status(), write(context, differences));
    context.out.flush();
    left.report();
    for (const std::string& path : chosen.unmatched) {
        complain(context.options.file + " has no " + path);
        status = kRefused;
    }
    return status;
}

}  // namespace trctl
