#include "trctl/Layout.h"

#include "trctl/Text.h"

#include <algorithm>
#include <limits>

namespace trctl {

namespace {

std::size_t leftOf(std::size_t columns, std::size_t taken) {
    return columns > taken ? columns - taken : 0;
}

}  // namespace

std::size_t lineColumns(const Context& context) {
    if (!context.terminal.isTerminal() || context.options.wide)
        return std::numeric_limits<std::size_t>::max();
    return context.terminal.size().columns;
}

std::string fitted(const Context& context, const std::string& text, std::size_t taken) {
    const std::size_t room = leftOf(lineColumns(context), taken);
    return room == 0 ? "" : shortened(text, room, "~");
}

std::string fittedName(const Context& context, const std::string& name, std::size_t taken) {
    const std::size_t columns = lineColumns(context);
    return shortenedAtLeft(name, std::max(leftOf(columns, taken), columns / 2));
}

std::string fittedLine(const Context& context, const std::string& ahead, const std::string& address,
                       const std::string& value) {
    const std::string text = " = " + escaped(value);
    const std::string name =
        ahead + fittedName(context, escaped(address), width(ahead) + width(text));
    return name + fitted(context, text, width(name));
}

}  // namespace trctl
