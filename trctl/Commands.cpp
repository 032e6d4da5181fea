#include "trctl/Commands.h"

#include "client/Json.h"
#include "trctl/Reader.h"
#include "trctl/SetOutcome.h"
#include "trctl/Text.h"
#include "trctl/Tree.h"

#include <algorithm>
#include <optional>

namespace trctl {

namespace {

bool contains(const Addresses& list, const std::string& address) {
    return std::find(list.begin(), list.end(), address) != list.end();
}

// Why a path is not found; empty for an object with nothing beneath it.
std::string faultOf(const std::string& path, const Addresses& all) {
    if (isObject(path) && contains(all, path)) return "";
    const std::string object = path + '.';
    if (!isObject(path) && !select(all, {object}).found.empty())
        return path + " is an object; for everything beneath it write " + object;
    if (path.find_first_of("*?[") != std::string::npos) return "nothing matches " + path;
    return "there is no " + path;
}

std::size_t widest(const Addresses& addresses) {
    std::size_t columns = 0;
    for (const std::string& address : addresses)
        columns = std::max(columns, width(escaped(address)));
    return columns;
}

void printTreeLine(Context& context, const TreeLine& line) {
    const std::string name = escaped(line.name);
    std::string text = line.ahead + (line.isLeaf ? name : context.terminal.name(name));
    if (line.isLeaf) {
        const std::size_t taken = width(line.ahead) + width(name) + 3;
        text += " = " + context.terminal.good(fitted(context, escaped(line.value), taken));
    }
    context.out.line(text);
}

// The daemon does not report a write that it drops, and it adds unknown addresses.
std::string reasonNotToSet(client::Daemon& daemon, const std::string& path) {
    if (!contains(daemon.parameters(), path)) {
        const Addresses all = daemon.addresses();
        if (isObject(path) && contains(all, path)) return path + " is an object, not a parameter";
        if (!select(all, {path + '.'}).found.empty()) return path + " is an object";
        return "there is no parameter " + path;
    }
    return daemon.isWritable(path) ? "" : path + " is read-only";
}

struct Row {
    const char* name;
    int (*run)(Context&);
};

constexpr Row kCommands[] = {
    {"get", get},     {"set", set},   {"list", list}, {"tree", tree},       {"info", info},
    {"watch", watch}, {"wait", wait}, {"diff", diff}, {"changes", changes}, {"report", report}};

}  // namespace

std::string valueLine(const std::string& address, const std::string& value, std::size_t columns) {
    return padded(escaped(address), columns) + " = " + escaped(value);
}

std::string valueOrReason(client::Daemon& daemon, const std::string& address) {
    try {
        return daemon.value(address);
    } catch (const client::Refused& refusal) {
        return refusal.what();
    }
}

std::string fitted(const Context& context, const std::string& text, std::size_t taken) {
    if (!context.terminal.isTerminal()) return text;
    const std::size_t columns = context.terminal.size().columns;
    return shortened(text, columns > taken ? columns - taken : 0, "~");
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

int get(Context& context) {
    const Selection selection = select(context.daemon.parameters(), context.options.paths);
    const std::size_t columns = context.terminal.isTerminal() ? widest(selection.found) : 0;
    Reader reader(context.daemon);
    client::Values values;
    for (const std::string& address : selection.found) {
        const auto value = reader.value(address);
        if (!value) continue;
        if (context.options.json)
            values.emplace_back(address, *value);
        else
            context.out.line(valueLine(address, *value, columns));
    }
    if (context.options.json) context.out.line(escapedJson(client::toJson(values)));
    return std::max(reader.status(), complainOfUnmatched(context, selection.unmatched));
}

int set(Context& context) {
    const std::string& path = context.options.parameter;
    const std::string& given = context.options.value;
    const std::string reason = reasonNotToSet(context.daemon, path);
    if (!reason.empty()) {
        complain(reason);
        return kRefused;
    }
    const std::string before = valueOrReason(context.daemon, path);
    try {
        context.daemon.set(path, given);
    } catch (const client::Refused& refusal) {
        context.out.line(valueLine(path, valueOrReason(context.daemon, path)));
        context.out.flush();
        complain(path + " does not take this value: " + refusal.what());
        return kRefused;
    }
    const std::string after = valueOrReason(context.daemon, path);
    const SetOutcome outcome = judgeSet(given, before, after);
    context.out.line(valueLine(path, after));
    context.out.flush();
    if (!outcome.remark.empty()) complain(path + ": " + outcome.remark);
    return outcome.isTaken ? kDone : kRefused;
}

int tree(Context& context) {
    const Options& options = context.options;
    const Selection selection = select(context.daemon.addresses(), options.paths);
    Reader reader(context.daemon);
    std::vector<Leaf> leaves;
    for (const std::string& address : selection.found) {
        const auto value = isObject(address) ? std::string() : reader.value(address);
        leaves.push_back({address, value.value_or("")});
    }
    const bool hasRoot = options.paths.size() == 1 && isObject(options.paths.front()) &&
                         !selection.found.empty() &&
                         selection.found.front().rfind(options.paths.front(), 0) == 0;
    const Strokes& strokes =
        context.terminal.isUtf8() && !options.ascii ? kUnicodeStrokes : kAsciiStrokes;
    for (const TreeLine& line : drawTree(leaves, hasRoot ? options.paths.front() : "", strokes))
        printTreeLine(context, line);
    return std::max(reader.status(), complainOfUnmatched(context, selection.unmatched));
}

int changes(Context& context) {
    const std::string lines = context.daemon.changes();
    int status = kDone;
    for (std::size_t at = 0; at < lines.size();) {
        const std::size_t end = std::min(lines.find('\n', at), lines.size());
        const std::string line = lines.substr(at, end - at);
        at = end + 1;
        const std::string fault = client::faultOfChangeLine(line);
        if (fault.empty()) {
            context.out.line(escapedJson(line));
        } else {
            context.out.line(context.terminal.bad("bad (" + escaped(fault) + "): ") +
                             escaped(line));
            status = kRefused;
        }
    }
    return status;
}

int runCommand(Context& context) {
    for (const Row& row : kCommands)
        if (context.options.command == row.name) return row.run(context);
    return kUsage;
}

}  // namespace trctl
