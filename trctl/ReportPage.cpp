#include "trctl/ReportPage.h"

#include "trctl/ReportTemplate.h"
#include "trctl/Text.h"

#include <json-c/json.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>

namespace trctl {

namespace {

constexpr char kMask[] = "********";
constexpr std::size_t kShortestSecret = 4;  // shorter texts turn up in any value
constexpr std::size_t kLongestPoint = 200;

struct Drop {
    void operator()(json_object* object) const { json_object_put(object); }
};
using Object = std::unique_ptr<json_object, Drop>;

bool endsWith(const std::string& text, std::string_view end) {
    const auto isSame = [](char given, char small) { return (given | 0x20) == small; };
    return text.size() >= end.size() &&
           std::equal(end.begin(), end.end(), text.end() - static_cast<std::ptrdiff_t>(end.size()),
                      [&](char small, char given) { return isSame(given, small); });
}

bool isSecret(const std::string& address) {
    return endsWith(address, "passphrase") || endsWith(address, "password");
}

std::string replaced(const std::string& text, std::string_view from, std::string_view to) {
    std::string result;
    std::size_t at = 0;
    for (std::size_t next = 0; (next = text.find(from, at)) != std::string::npos;
         at = next + from.size()) {
        result.append(text, at, next - at);
        result += to;
    }
    return result.append(text, at);
}

std::string withoutEnd(const std::string& text) {
    return text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
}

// The longest first: one may begin another.
void insertByLength(std::vector<std::string>& secrets, const std::string& secret) {
    const auto place = std::find_if(secrets.begin(), secrets.end(), [&](const std::string& other) {
        return other.size() <= secret.size();
    });
    secrets.insert(place, secret);
}

json_object* jsonOf(const std::string& text) {
    return json_object_new_string_len(text.data(), static_cast<int>(text.size()));
}

json_object* jsonOf(const Series::Points& points) {
    json_object* list = json_object_new_array();
    for (const auto& [milliseconds, value] : points) {
        json_object* point = json_object_new_array();
        json_object_array_add(point, json_object_new_int64(milliseconds));
        json_object_array_add(point, jsonOf(value));
        json_object_array_add(list, point);
    }
    return list;
}

template <typename Entries>
json_object* jsonOf(const Entries& entries) {
    json_object* object = json_object_new_object();
    for (const auto& [address, entry] : entries)
        json_object_object_add(object, address.c_str(), jsonOf(entry));
    return object;
}

struct Escape {
    std::string_view text;
    std::string_view json;
};

// What ends a script element or begins another, and what ends a line of JavaScript. In JSON these
// stand in strings only.
constexpr Escape kEscapes[] = {{"<", "\\u003c"},
                               {">", "\\u003e"},
                               {"&", "\\u0026"},
                               {"\u2028", "\\u2028"},
                               {"\u2029", "\\u2029"}};

}  // namespace

client::Values withoutSecrets(client::Values values) {
    std::vector<std::string> secrets;
    for (auto& [address, value] : values) {
        if (!isSecret(address) || value.empty()) continue;
        const std::string secret = withoutEnd(value);
        if (secret.size() >= kShortestSecret) insertByLength(secrets, secret);
        value = kMask;
    }
    for (auto& [address, value] : values)
        for (const std::string& secret : secrets)
            if (value.find(secret) != std::string::npos) value = replaced(value, secret, kMask);
    return values;
}

void Series::add(std::int64_t milliseconds, const client::Values& round) {
    for (const auto& [address, value] : round) {
        Track& track = tracks_[address];
        if (!track.points.empty() && track.latest == value) continue;
        track.latest = value;
        track.points.emplace_back(milliseconds, shortened(value, kLongestPoint, "~"));
    }
}

std::map<std::string, Series::Points> Series::changed() const {
    std::map<std::string, Points> result;
    for (const auto& [address, track] : tracks_)
        if (track.points.size() > 1) result[address] = track.points;
    return result;
}

std::string reportJson(const Report& report) {
    const Object object(json_object_new_object());
    json_object_object_add(object.get(), "program", jsonOf(report.program));
    json_object_object_add(object.get(), "made", jsonOf(report.made));
    json_object_object_add(object.get(), "source", jsonOf(report.source));
    json_object_object_add(object.get(), "seconds", json_object_new_int(report.seconds));
    json_object_object_add(object.get(), "values", jsonOf(report.values));
    json_object_object_add(object.get(), "series", jsonOf(report.series));
    std::string json = json_object_to_json_string_ext(
        object.get(), JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE);
    for (const Escape& escape : kEscapes) json = replaced(json, escape.text, escape.json);
    return json;
}

std::string reportPage(const Report& report, const std::string& nonce) {
    // The data last, as it may hold anything.
    return replaced(replaced(kReportTemplate, "{{nonce}}", nonce), "{{data}}", reportJson(report));
}

}  // namespace trctl
