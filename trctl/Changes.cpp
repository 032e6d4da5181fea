#include "client/Json.h"
#include "trctl/Commands.h"
#include "trctl/JsonOutput.h"
#include "trctl/Text.h"

#include <algorithm>

namespace trctl {

namespace {

std::vector<ChangeLine> checkedLines(const std::string& text) {
    std::vector<ChangeLine> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        lines.push_back({line, client::faultOfChangeLine(line)});
        at = end + 1;
    }
    return lines;
}

void print(Context& context, const ChangeLine& line) {
    if (line.fault.empty())
        context.out.line(escapedJson(line.text));
    else
        context.out.line(context.terminal.bad("bad (" + escaped(line.fault) + "): ") +
                         escaped(line.text));
}

}  // namespace

int changes(Context& context) {
    const std::vector<ChangeLine> lines = checkedLines(context.daemon.changes());
    if (context.options.json)
        context.out.line(changesJson(lines));
    else
        for (const ChangeLine& line : lines) print(context, line);
    const bool areGood = std::all_of(lines.begin(), lines.end(),
                                     [](const ChangeLine& line) { return line.fault.empty(); });
    return areGood ? kDone : kRefused;
}

}  // namespace trctl
