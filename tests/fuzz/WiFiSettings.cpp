#include "providers/NetworkText.h"
#include "stb/src/common/Text.h"

#include <cstddef>
#include <cstdint>
#include <string>

// A WiFi settings file: written by other programs, and perhaps cut short by a power failure.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace TR;
    const std::string text(reinterpret_cast<const char*>(data), size);
    NetworkText::wiFiConfig(Utils::splitLines(text, Utils::LineFeeds::Drop));
    return 0;
}
