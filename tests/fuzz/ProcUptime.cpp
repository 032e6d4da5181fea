#include "providers/DeviceInfoDataProvider.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// The text before the first point; nothing without a point.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string seconds = TR::DeviceInfo::upTime(text);
    const bool hasPoint = text.find('.') != std::string::npos;
    if (hasPoint ? text.compare(0, seconds.size() + 1, seconds + '.') != 0 : !seconds.empty())
        std::abort();
    return 0;
}
