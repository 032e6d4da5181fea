#include "providers/FrontEndParsing.h"
#include "stb/src/common/Text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// Whatever netstat prints: every group that is found looks like an address of at most 15
// characters.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string output(reinterpret_cast<const char*>(data), size);
    const auto lines = TR::Utils::splitLines(output, TR::Utils::LineFeeds::Keep);
    for (const std::string& address : TR::Igmp::groupAddresses(lines)) {
        if (address.size() < sizeof "224.0.0.0" - 1 || address.size() > 15) std::abort();
        if (address.find_first_not_of("0123456789.") != std::string::npos) std::abort();
    }
    return 0;
}
