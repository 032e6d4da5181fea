#include "stb/src/common/Text.h"
#include "trctl/JsonOutput.h"
#include "trctl/Layout.h"
#include "trctl/Reader.h"
#include "trctl/Text.h"

#include <algorithm>
#include <optional>

namespace trctl {

namespace {

// A path that is not an object's stands for itself.
Addresses levelOf(const Addresses& all, const Addresses& paths) {
    if (paths.empty()) return nextLevel(all, {});
    Addresses level;
    for (const std::string& path : paths) {
        Addresses more = nextLevel(all, {path});
        if (more.empty()) more = select(all, {path}).found;
        level.insert(level.end(), more.begin(), more.end());
    }
    return level;
}

// Nothing when the daemon refuses the value.
std::optional<LongRow> rowOf(Context& context, Reader& reader, const std::string& address) {
    const auto value = isObject(address) ? std::string() : reader.value(address);
    if (!value) return std::nullopt;
    const bool isWritable = context.daemon.isWritable(address);
    const bool isForcedInform = context.daemon.isForcedInform(address);
    return LongRow{address, isWritable, isForcedInform, typeOf(address, *value), *value};
}

void print(Context& context, const LongRow& row) {
    const std::string flags =
        std::string(row.isWritable ? "w" : "-") + (row.isForcedInform ? 'i' : '-');
    const std::string value = row.value.empty() ? "" : ' ' + escaped(row.value);
    const std::string rest = ' ' + flags + ' ' + row.type + value;
    const std::string name = fittedName(context, escaped(row.address), width(rest));
    context.out.line(name + fitted(context, rest, width(name)));
}

void printLong(Context& context, Reader& reader, const Addresses& addresses) {
    std::vector<LongRow> rows;
    for (const std::string& address : addresses) {
        const auto row = rowOf(context, reader, address);
        if (row && context.options.json)
            rows.push_back(*row);
        else if (row)
            print(context, *row);
    }
    if (context.options.json) context.out.line(listJson(rows));
}

void print(Context& context, const Addresses& addresses) {
    for (const std::string& address : addresses) {
        const std::string shown = fittedName(context, escaped(address), 0);
        context.out.line(isObject(address) ? context.terminal.name(shown) : shown);
    }
}

Addresses chosen(const Options& options, const Addresses& all, const Selection& selection) {
    if (!options.level) return selection.found;
    Addresses level = levelOf(all, options.paths);
    if (options.parametersOnly)
        level.erase(std::remove_if(level.begin(), level.end(), isObject), level.end());
    return level;
}

}  // namespace

// The bus carries texts only, so the type is the one that the text looks like.
const char* typeOf(const std::string& address, const std::string& value) {
    if (isObject(address)) return "object";
    const auto number = TR::Utils::leadingNumber(value);
    return number && std::to_string(*number) == value ? "integer" : "string";
}

int list(Context& context) {
    const Options& options = context.options;
    const Addresses all =
        options.parametersOnly ? context.daemon.parameters() : context.daemon.addresses();
    const Selection selection = select(all, options.paths);
    const Addresses addresses = chosen(options, all, selection);
    Reader reader(context.daemon);
    if (options.isLong)
        printLong(context, reader, addresses);
    else if (options.json)
        context.out.line(listJson(addresses));
    else
        print(context, addresses);
    return std::max(reader.status(), complainOfUnmatched(context, selection.unmatched));
}

}  // namespace trctl
