#include "providers/DeviceInfoDataProvider.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

// The kernel's text, or what is bound over it: never more than the text, without blanks at its
// ends. A text that is too short for a missing key is refused by std::out_of_range, on purpose.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const std::string key : {"MemTotal:", "MemFree:"}) {
        try {
            const std::string figure = TR::DeviceInfo::memoryStatus(text, key);
            if (figure.size() > size || text.find(figure) == std::string::npos) std::abort();
        } catch (const std::out_of_range&) {
            const bool isTooShort = size + 1 < key.size();
            if (!isTooShort || text.find(key) != std::string::npos) std::abort();
        }
    }
    return 0;
}
