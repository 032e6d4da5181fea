#include "client/Json.h"
#include "trctl/Layout.h"
#include "trctl/Reader.h"
#include "trctl/Text.h"

#include <algorithm>
#include <string_view>

namespace trctl {

namespace {

/// Prints each value as soon as it is read; a JSON object comes at the end.
class Printer {
  public:
    Printer(Context& context, const Addresses& addresses) : context_(context) {
        const std::size_t line = lineColumns(context);
        if (!context.terminal.isTerminal() || context.options.wide) return;
        for (const std::string& address : addresses)
            columns_ = std::max(columns_, width(escaped(address)));
        columns_ = std::min(columns_, line / 2);
    }

    void print(const std::string& address, const std::string& value) {
        if (context_.options.json)
            values_.emplace_back(address, value);
        else if (context_.options.valueOnly)
            printRaw(value);
        else
            printPair(escaped(address), escaped(value));
    }
    void finish() {
        if (context_.options.json) context_.out.line(escapedJson(client::toJson(values_)));
    }

  private:
    void printRaw(const std::string& value) {
        context_.out.print(value);
        context_.out.print(context_.options.endWithNul ? std::string_view("\0", 1) : "\n");
    }
    void printPair(const std::string& address, const std::string& value) {
        const std::string name = columns_ == 0 ? address : shortenedAtLeft(address, columns_);
        const std::string ahead = padded(name, columns_) + " = ";
        context_.out.line(ahead + context_.terminal.good(fitted(context_, value, width(ahead))));
    }

    Context& context_;
    std::size_t columns_ = 0;  ///< of the names; 0 leaves them as they are
    client::Values values_;
};

}  // namespace

int get(Context& context) {
    const Selection selection = select(context.daemon.parameters(), context.options.paths);
    Reader reader(context.daemon);
    Printer printer(context, selection.found);
    for (const std::string& address : selection.found)
        if (const auto value = reader.value(address)) printer.print(address, *value);
    printer.finish();
    return std::max(reader.status(), complainOfUnmatched(context, selection.unmatched));
}

}  // namespace trctl
