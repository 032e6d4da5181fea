#include "client/Json.h"
#include "trctl/Text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// A file given as saved values, and a change line of the daemon: both may hold anything. Values
// that are accepted can be printed and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    client::faultOfChangeLine(text);
    std::string error;
    const auto saved = client::parseSaved(text, error);
    if (saved.has_value() == !error.empty()) std::abort();
    if (!saved) return 0;
    client::Values values(saved->begin(), saved->end());
    const auto again = client::parseSaved(trctl::escapedJson(client::toJson(values)), error);
    if (!again || *again != *saved) std::abort();
    return 0;
}
