#include "client/Json.h"
#include "tests/fuzz/Fuzz.h"
#include "trctl/Text.h"

#include <string>

// A file given as saved values, and a change line of the daemon: both may hold anything. Values
// that are accepted can be printed and read again.
void tryInput(const std::string& text) {
    client::faultOfChangeLine(text);
    std::string error;
    const auto saved = client::parseSaved(text, error);
    require(saved.has_value() == error.empty());
    if (!saved) return;
    client::Values values(saved->begin(), saved->end());
    const auto again = client::parseSaved(trctl::escapedJson(client::toJson(values)), error);
    require(again && *again == *saved);
}
