#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace client {

using Values = std::vector<std::pair<std::string, std::string>>;

/// One JSON object, an address and its text a line, in the given order.
std::string toJson(const Values& values);

/// Makes one JSON object on one line, its members in the order of the calls.
class JsonLine {
  public:
    /// Null without a text.
    void addText(const char* name, const std::string* text);
    /// A number, true, false or null.
    void addRaw(const char* name, const char* json);
    /// The line, without a line feed.
    std::string end() const { return line_ + " }"; }

  private:
    std::string line_ = "{";
};

/// What a saved `get --json` holds; nothing, and the reason in \p error, for any other text.
std::optional<std::map<std::string, std::string>> parseSaved(const std::string& json,
                                                             std::string& error);

/// Empty when the CWMP client can read this change line, else what is wrong with it.
std::string faultOfChangeLine(const std::string& line);

}  // namespace client
