#include "client/Json.h"
#include "trctl/Commands.h"
#include "trctl/Description.h"
#include "trctl/Layout.h"
#include "trctl/Reader.h"
#include "trctl/Text.h"
#include "trctl/Watched.h"

#include <algorithm>
#include <optional>
#include <string>

namespace trctl {

namespace {

/// What is known about one address, as lines for people or as one line of JSON.
class Sheet {
  public:
    explicit Sheet(Context& context) : context_(context), isJson_(context.options.json) {}

    bool isJson() const { return isJson_; }
    /// Null is not known.
    void add(const char* label, const char* key, const std::string* text) {
        if (isJson_)
            json_.addText(key, text);
        else
            print(label, text == nullptr ? "unknown" : escaped(*text));
    }
    /// The same for an address, of which the end is worth more than the beginning.
    void addAddress(const std::string& address) {
        if (isJson_)
            json_.addText("address", &address);
        else
            print("address", fittedName(context_, escaped(address), kColumns));
    }
    void add(const char* label, const char* key, std::optional<bool> is) {
        if (isJson_)
            json_.addRaw(key, !is ? "null" : *is ? "true" : "false");
        else
            print(label, !is ? "unknown" : *is ? "yes" : "no");
    }
    void end() {
        if (isJson_) context_.out.line(escapedJson(json_.end()));
    }

  private:
    void print(const char* label, const std::string& text) {
        context_.out.line(padded(label, kColumns) + fitted(context_, text, kColumns));
    }

    static constexpr std::size_t kColumns = 15;

    Context& context_;
    bool isJson_;
    client::JsonLine json_;
};

// JSON has every member; people see what applies: an object has neither type, value nor source.
void print(Context& context, const Watched& watched, const std::string& address,
           const std::string& value) {
    const bool isParameter = !isObject(address);
    const std::string kind = isParameter ? "parameter" : "object";
    const std::string type = typeOf(address, value);
    const auto about = descriptionOf(address);
    const bool isWritable = context.daemon.isWritable(address);
    const bool isForcedInform = context.daemon.isForcedInform(address);
    Sheet sheet(context);
    const bool isWhole = isParameter || sheet.isJson();
    sheet.addAddress(address);
    sheet.add("kind", "kind", &kind);
    if (isWhole) sheet.add("type", "type", &type);
    if (isWhole) sheet.add("value", "value", isParameter ? &value : nullptr);
    sheet.add("writable", "writable", isWritable);
    sheet.add("forced inform", "forcedInform", isForcedInform);
    if (isWhole) sheet.add("source", "source", about ? &about->source : nullptr);
    if (sheet.isJson() || (about && !about->unit.empty()))
        sheet.add("unit", "unit", about ? &about->unit : nullptr);
    sheet.add("meaning", "meaning", about ? &about->meaning : nullptr);
    if (isWhole) sheet.add("watched", "watched", isParameter ? watched.has(address) : false);
    sheet.end();
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
        if (!isFirst && !context.options.json) context.out.line("");
        isFirst = false;
        print(context, watched, address, *value);
    }
    return std::max(reader.status(), complainOfUnmatched(context, selection.unmatched));
}

}  // namespace trctl
