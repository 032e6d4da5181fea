#include "providers/NetworkText.h"
#include "stb/src/common/Text.h"
#include "tests/fuzz/Fuzz.h"

// A WiFi settings file: written by other programs, and perhaps cut short by a power failure.
void tryInput(const std::string& text) {
    using namespace TR;
    NetworkText::wiFiConfig(Utils::splitLines(text, Utils::LineFeeds::Drop));
}
