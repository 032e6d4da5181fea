#include "trctl/Commands.h"

#include "trctl/Layout.h"
#include "trctl/Pattern.h"
#include "trctl/Reader.h"
#include "trctl/Text.h"

#include <algorithm>

namespace trctl {

namespace {

// Why a path is not found; empty for an object with nothing beneath it.
std::string faultOf(const std::string& path, const Addresses& all) {
    if (isObject(path) && !selectThemselves(all, {path}).found.empty()) return "";
    const std::string object = path + '.';
    if (!isObject(path) && !select(all, {object}).found.empty())
        return path + (Pattern::isPattern(path) ? " names only objects" : " is an object") +
               "; for everything beneath " + (Pattern::isPattern(path) ? "them" : "it") +
               " write " + object;
    if (Pattern::isPattern(path)) return "nothing matches " + path;
    return "there is no " + path;
}

struct Row {
    const char* name;
    int (*run)(Context&);
};

constexpr Row kCommands[] = {{"get", get},         {"set", set},      {"restore", restore},
                             {"list", list},       {"tree", tree},    {"info", info},
                             {"watch", watch},     {"wait", wait},    {"diff", diff},
                             {"changes", changes}, {"report", report}};

}  // namespace

std::string valueLine(const std::string& address, const std::string& value) {
    return escaped(address) + " = " + escaped(value);
}

std::string valueOrReason(client::Daemon& daemon, const std::string& address) {
    try {
        return daemon.value(address);
    } catch (const client::Refused& refusal) {
        return refusal.what();
    }
}

int complainOfUnmatched(Context& context, const Addresses& unmatched) {
    if (unmatched.empty()) return kDone;
    context.out.flush();  // what was found comes first
    int status = kDone;
    const Addresses all = context.daemon.addresses();
    for (const std::string& path : unmatched) {
        const std::string fault = faultOf(path, all);
        if (fault.empty()) continue;
        complain(fault);
        status = kRefused;
    }
    return status;
}

int runCommand(Context& context) {
    for (const Row& row : kCommands)
        if (context.options.command == row.name) return row.run(context);
    return kUsage;
}

}  // namespace trctl
