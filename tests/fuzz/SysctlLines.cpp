#include "providers/FrontEndParsing.h"
#include "stb/src/common/Text.h"

#include <cstddef>
#include <cstdint>
#include <string>

// Whatever sysctl prints, broken lines and odd numbers included.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string output(reinterpret_cast<const char*>(data), size);
    TR::Igmp::kernelSettings(TR::Utils::splitLines(output, TR::Utils::LineFeeds::Keep));
    return 0;
}
