#include "providers/DeviceInfoDataProvider.h"
#include "tests/fuzz/Fuzz.h"

#include <stdexcept>
#include <string>

// The kernel's text, or what is bound over it: never more than the text, without blanks at its
// ends. A text that is too short for a missing key is refused by std::out_of_range, on purpose.
void tryInput(const std::string& text) {
    for (const std::string key : {"MemTotal:", "MemFree:"}) {
        try {
            const std::string figure = TR::DeviceInfo::memoryStatus(text, key);
            require(figure.size() <= text.size() && text.find(figure) != std::string::npos);
        } catch (const std::out_of_range&) {
            require(text.size() + 1 < key.size() && text.find(key) == std::string::npos);
        }
    }
}
