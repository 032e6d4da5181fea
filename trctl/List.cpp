#include "stb/src/common/Text.h"
#include "trctl/Commands.h"
#include "trctl/Reader.h"
#include "trctl/Text.h"

#include <algorithm>

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

void printLong(Context& context, Reader& reader, const std::string& address) {
    const auto value = isObject(address) ? std::string() : reader.value(address);
    if (!value) return;
    const char* writable = context.daemon.isWritable(address) ? "w" : "-";
    const char* inform = context.daemon.isForcedInform(address) ? "i" : "-";
    const std::string ahead =
        escaped(address) + ' ' + writable + inform + ' ' + typeOf(address, *value);
    if (value->empty())
        context.out.line(ahead);
    else
        context.out.line(ahead + ' ' + fitted(context, escaped(*value), width(ahead) + 1));
}

void printAddress(Context& context, const std::string& address) {
    const std::string shown = escaped(address);
    context.out.line(isObject(address) ? context.terminal.name(shown) : shown);
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
    Reader reader(context.daemon);
    for (const std::string& address :
         options.level ? levelOf(all, options.paths) : selection.found) {
        if (options.level && options.parametersOnly && isObject(address)) continue;
        if (options.isLong)
            printLong(context, reader, address);
        else
            printAddress(context, address);
    }
    return std::max(reader.status(), complainOfUnmatched(context, selection.unmatched));
}

}  // namespace trctl
