#include "trctl/JsonOutput.h"
#include "trctl/Layout.h"
#include "trctl/Reader.h"
#include "trctl/Text.h"
#include "trctl/Tree.h"

#include <algorithm>
#include <unordered_set>

namespace trctl {

namespace {

void printTreeLine(Context& context, const TreeLine& line) {
    const std::string ahead = fitted(context, line.ahead, 0);
    const std::size_t columns = lineColumns(context);
    const std::size_t room = columns - std::min(columns, width(ahead));
    const std::string name = shortenedAtLeft(escaped(line.name), room);
    std::string text = ahead + (line.isLeaf ? name : context.terminal.name(name));
    if (line.isLeaf) {
        const std::size_t taken = width(ahead) + width(name);
        text += fitted(context, " = ", taken);
        text += context.terminal.good(fitted(context, escaped(line.value), taken + 3));
    }
    context.out.line(text);
}

// The object of the paths that the address is beneath; empty for one that a pattern found.
std::string objectAbove(const std::string& address, const Addresses& paths) {
    for (const std::string& path : paths)
        if (isObject(path) && address.compare(0, path.size(), path) == 0) return path;
    return "";
}

// What is deeper is cut to the object at that depth, which then stands there once.
Addresses cutToDepth(const Addresses& addresses, const Options& options) {
    if (options.depth == 0) return addresses;
    Addresses cut;
    std::unordered_set<std::string> taken;
    for (const std::string& address : addresses) {
        std::size_t end = objectAbove(address, options.paths).size();
        for (unsigned level = 0; level < options.depth && end != std::string::npos; ++level) {
            const std::size_t point = address.find('.', end);
            end = point == std::string::npos ? point : point + 1;
        }
        const std::string shown = address.substr(0, end);
        if (taken.insert(shown).second) cut.push_back(shown);
    }
    return cut;
}

void draw(Context& context, const std::vector<Leaf>& leaves) {
    const Options& options = context.options;
    const bool hasRoot = options.paths.size() == 1 && isObject(options.paths.front()) &&
                         !leaves.empty() &&
                         leaves.front().address.rfind(options.paths.front(), 0) == 0;
    const Strokes& strokes =
        context.terminal.isUtf8() && !options.ascii ? kUnicodeStrokes : kAsciiStrokes;
    for (const TreeLine& line : drawTree(leaves, hasRoot ? options.paths.front() : "", strokes))
        printTreeLine(context, line);
}

}  // namespace

int tree(Context& context) {
    const Options& options = context.options;
    const Selection selection = select(context.daemon.addresses(), options.paths);
    Reader reader(context.daemon);
    std::vector<Leaf> leaves;
    for (const std::string& address : cutToDepth(selection.found, options)) {
        const auto value = isObject(address) ? std::string() : reader.value(address);
        if (value || !options.json) leaves.push_back({address, value.value_or("")});
    }
    if (options.json)
        context.out.line(treeJson(leaves));
    else
        draw(context, leaves);
    return std::max(reader.status(), complainOfUnmatched(context, selection.unmatched));
}

}  // namespace trctl
