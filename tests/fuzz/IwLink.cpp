#include "providers/NetworkText.h"
#include "stb/src/common/Text.h"
#include "tests/fuzz/Fuzz.h"

// What `iw INTERFACE link` prints: the air decides on the network's name, the driver on the rest.
void tryInput(const std::string& output) {
    using namespace TR;
    NetworkText::wiFiStatus(Utils::splitLines(output, Utils::LineFeeds::Keep));
}
