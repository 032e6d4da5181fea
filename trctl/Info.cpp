#include "client/Json.h"
#include "trctl/Commands.h"
#include "trctl/Description.h"
#include "trctl/Reader.h"
#include "trctl/Text.h"
#include "trctl/Watched.h"

#include <algorithm>

namespace trctl {

namespace {

struct Facts {
    std::string address;
    std::optional<std::string> value;  ///< nothing for an object
    bool isWritable;
    bool isForcedInform;
    std::optional<Description> description;
    std::optional<bool> isWatched;  ///< nothing when it is not known
};

const char* kindOf(const Facts& facts) {
    return facts.value ? "parameter" : "object";
}

client::Member orNull(const std::optional<std::string>& text) {
    return text ? client::Member(*text) : client::Member(nullptr);
}

void printJson(Output& out, const Facts& facts) {
    const auto& about = facts.description;
    const auto known = [&](std::string Description::*text) {
        return about ? client::Member((*about).*text) : client::Member(nullptr);
    };
    out.line(escapedJson(
        client::toJsonLine({{"address", facts.address},
                            {"kind", std::string(kindOf(facts))},
                            {"type", std::string(typeOf(facts.address, facts.value.value_or("")))},
                            {"value", orNull(facts.value)},
                            {"writable", facts.isWritable},
                            {"forcedInform", facts.isForcedInform},
                            {"source", known(&Description::source)},
                            {"unit", known(&Description::unit)},
                            {"meaning", known(&Description::meaning)},
                            {"watched", facts.isWatched ? client::Member(*facts.isWatched)
                                                        : client::Member(nullptr)}})));
}

void printField(Output& out, const char* name, const std::string& text) {
    out.line(padded(name, 15) + text);
}

const char* yesOrNo(bool is) {
    return is ? "yes" : "no";
}

void printText(Output& out, const Facts& facts) {
    printField(out, "address", escaped(facts.address));
    printField(out, "kind", kindOf(facts));
    if (facts.value) {
        printField(out, "type", typeOf(facts.address, *facts.value));
        printField(out, "value", escaped(*facts.value));
    }
    printField(out, "writable", yesOrNo(facts.isWritable));
    printField(out, "forced inform", yesOrNo(facts.isForcedInform));
    const Description about = facts.description.value_or(Description{"", "unknown", "unknown"});
    if (facts.value) printField(out, "source", about.source);
    if (!about.unit.empty()) printField(out, "unit", about.unit);
    printField(out, "meaning", about.meaning);
    if (facts.value)
        printField(out, "watched", facts.isWatched ? yesOrNo(*facts.isWatched) : "unknown");
}

Facts factsOf(client::Daemon& daemon, const Watched& watched, const std::string& address,
              const std::string& value) {
    const bool isParameter = !isObject(address);
    return {address,
            isParameter ? std::optional<std::string>(value) : std::nullopt,
            daemon.isWritable(address),
            daemon.isForcedInform(address),
            descriptionOf(address),
            isParameter ? watched.has(address) : false};
}

}  // namespace

int info(Context& context) {
    const Selection selection = selectThemselves(context.daemon.addresses(), context.options.paths);
    const Watched watched;
    Reader reader(context.daemon);
    bool isFirst = true;
    for (const std::string& address : selection.found) {
        const auto value = isObject(address) ? std::string() : reader.value(address);
        if (!value) continue;
        const Facts facts = factsOf(context.daemon, watched, address, *value);
        if (context.options.json) {
            printJson(context.out, facts);
            continue;
        }
        if (!isFirst) context.out.line("");
        isFirst = false;
        printText(context.out, facts);
    }
    return std::max(reader.status(), complainOfUnmatched(context, selection.unmatched));
}

}  // namespace trctl
