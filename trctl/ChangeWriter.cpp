#include "trctl/ChangeWriter.h"

#include "client/Json.h"
#include "trctl/Plot.h"
#include "trctl/Text.h"

namespace trctl {

namespace {

constexpr std::size_t kLongestValue = 200;
// Where an ISO time has its parts.
constexpr std::size_t kDateLength = 10;
constexpr std::size_t kClockAt = 11;
constexpr std::size_t kClockLength = 8;
constexpr std::size_t kMinutesAt = 22;

// ISO 8601 in the local zone, with a colon in the offset, which strftime leaves out.
std::string isoTime(std::time_t time) {
    char text[40] = "";
    std::tm fields{};
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", localtime_r(&time, &fields));
    const std::string whole = text;
    return whole.substr(0, kMinutesAt) + ':' + whole.substr(kMinutesAt);
}

std::string shown(const std::string* value, const char* otherwise) {
    return value == nullptr ? otherwise : shortened(escaped(*value), kLongestValue, "~");
}

const std::string* valueIn(const Round& round, const std::string& address) {
    const auto found = round.values.find(address);
    return found == round.values.end() ? nullptr : &found->second;
}

}  // namespace

bool ChangeWriter::print(const Round& before, const Round& after) {
    if (!date_.empty()) printDate(after.time);
    const auto linesBefore = lines_;
    for (const auto& [address, value] : after.values) {
        const std::string* const old = valueIn(before, address);
        if (old == nullptr || *old != value) take({address, old, &value}, before, after);
    }
    for (const auto& [address, value] : before.values)
        if (after.values.count(address) == 0) take({address, &value, nullptr}, before, after);
    out_.flush();
    return isEnough() || (options_.once && lines_ > linesBefore);
}

bool ChangeWriter::isEnough() const {
    return options_.count > 0 && lines_ >= options_.count;
}

void ChangeWriter::take(const Change& change, const Round& before, const Round& after) {
    if (isEnough()) return;
    std::optional<double> rate;
    if (options_.rate && change.before != nullptr && change.after != nullptr)
        rate =
            rates_.of(change.address, *change.before, *change.after, before.seconds, after.seconds);
    if (options_.json) {
        printJson(change, after.time, rate);
    } else {
        printDate(after.time);
        printText(change, after.time, rate);
    }
    ++lines_;
}

void ChangeWriter::printDate(std::time_t time) {
    std::string date = isoTime(time).substr(0, kDateLength);
    if (date == date_) return;
    out_.line(terminal_.faint(date));
    date_ = std::move(date);
}

void ChangeWriter::printText(const Change& change, std::time_t time,
                             const std::optional<double>& rate) {
    std::string line = terminal_.faint(isoTime(time).substr(kClockAt, kClockLength)) + ' ' +
                       escaped(change.address) + ": " + shown(change.before, "(none)") + " -> " +
                       terminal_.good(shown(change.after, "(gone)"));
    if (rate) line += " (" + numberText(*rate) + "/s)";
    out_.line(line);
}

void ChangeWriter::printJson(const Change& change, std::time_t time,
                             const std::optional<double>& rate) {
    const std::string when = isoTime(time);
    client::JsonLine line;
    line.addText("time", &when);
    line.addText("address", &change.address);
    line.addText("before", change.before);
    line.addText("after", change.after);
    if (options_.rate) line.addRaw("perSecond", rate ? numberText(*rate).c_str() : "null");
    out_.line(escapedJson(line.end()));
}

}  // namespace trctl
