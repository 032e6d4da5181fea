#include "trctl/Set.h"

#include "trctl/Layout.h"
#include "trctl/Saved.h"
#include "trctl/SetOutcome.h"
#include "trctl/Text.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace trctl {

namespace {

// The daemon does not report a write that it drops, and it adds unknown addresses. \p listed are
// its parameters.
std::string reasonNotToSet(client::Daemon& daemon, const std::unordered_set<std::string>& listed,
                           const Assignment& assignment) {
    const std::string& path = assignment.path;
    if (listed.count(path) == 0) {
        const Addresses all = daemon.addresses();
        if (isObject(path) && std::find(all.begin(), all.end(), path) != all.end())
            return path + " is an object, not a parameter";
        if (!select(all, {path + '.'}).found.empty()) return path + " is an object";
        return "there is no parameter " + path;
    }
    if (!daemon.isWritable(path)) return path + " is read-only";
    if (isUtf8(assignment.value) && assignment.value.find('\0') == std::string::npos) return "";
    return path + " does not take this value: it is not valid UTF-8, or it holds a NUL";
}

// Nothing is written unless all of it can be.
int checkAll(Context& context, const std::vector<Assignment>& assignments) {
    const Addresses list = context.daemon.parameters();
    const std::unordered_set<std::string> listed(list.begin(), list.end());
    int status = kDone;
    for (const Assignment& assignment : assignments) {
        const std::string reason = reasonNotToSet(context.daemon, listed, assignment);
        if (reason.empty()) continue;
        complain(reason);
        status = kRefused;
    }
    return status;
}

// Without the line end that a command puts behind what it prints.
std::optional<std::string> standardInput() {
    std::string error;
    auto content = contentOf("-", error);
    if (!content) complain("standard input: " + error);
    if (content && !content->empty() && content->back() == '\n') content->pop_back();
    return content;
}

Written writeOne(client::Daemon& daemon, const Assignment& assignment) {
    const std::string& path = assignment.path;
    Written written{assignment, valueOrReason(daemon, path), "", false, ""};
    try {
        daemon.set(path, assignment.value);
        written.after = valueOrReason(daemon, path);
        const SetOutcome outcome = judgeSet(assignment.value, written.before, written.after);
        written.isTaken = outcome.isTaken;
        if (!outcome.remark.empty()) written.complaint = path + ": " + outcome.remark;
    } catch (const client::Refused& refusal) {
        written.after = valueOrReason(daemon, path);
        written.complaint = path + " does not take this value: " +
                            reasonOfRefusal(assignment.value, refusal.what());
    }
    return written;
}

}  // namespace

int writeAll(Context& context, const std::vector<Assignment>& assignments,
             const std::function<void(const Written&)>& print) {
    std::vector<Written> done;
    int status = kDone;
    const auto report = [&] {
        for (const Written& written : done) {
            print(written);
            context.out.flush();
            if (!written.complaint.empty()) complain(written.complaint);
            if (!written.isTaken) status = kRefused;
        }
    };
    try {
        for (const Assignment& assignment : assignments)
            done.push_back(writeOne(context.daemon, assignment));
    } catch (const client::Unreachable&) {
        report();
        throw;
    }
    report();
    return status;
}

int set(Context& context) {
    std::vector<Assignment> assignments = context.options.assignments;
    if (context.options.valueFromInput) {
        auto value = standardInput();
        if (!value) return kUsage;
        assignments.front().value = std::move(*value);
    }
    if (const int status = checkAll(context, assignments)) return status;
    return writeAll(context, assignments, [&](const Written& written) {
        context.out.line(fittedLine(context, "", written.assignment.path, written.after));
    });
}

}  // namespace trctl
