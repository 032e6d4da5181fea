#include "providers/NetworkText.h"
#include "stb/src/common/Text.h"

#include <cstddef>
#include <cstdint>
#include <string>

// What `iw INTERFACE link` prints: the air decides on the network's name, the driver on the rest.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace TR;
    const std::string text(reinterpret_cast<const char*>(data), size);
    NetworkText::wiFiStatus(Utils::splitLines(text, Utils::LineFeeds::Keep));
    return 0;
}
