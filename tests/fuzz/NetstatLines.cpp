#include "providers/FrontEndParsing.h"
#include "stb/src/common/Text.h"
#include "tests/fuzz/Fuzz.h"

#include <string>

// Whatever netstat prints: every group that is found looks like an address of at most 15
// characters.
void tryInput(const std::string& output) {
    const auto lines = TR::Utils::splitLines(output, TR::Utils::LineFeeds::Keep);
    for (const std::string& address : TR::Igmp::groupAddresses(lines)) {
        require(address.size() >= sizeof "224.0.0.0" - 1 && address.size() <= 15);
        require(address.find_first_not_of("0123456789.") == std::string::npos);
    }
}
