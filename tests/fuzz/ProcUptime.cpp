#include "providers/DeviceInfoDataProvider.h"
#include "tests/fuzz/Fuzz.h"

#include <string>

// The text before the first point; nothing without a point.
void tryInput(const std::string& text) {
    const std::string seconds = TR::DeviceInfo::upTime(text);
    const bool hasPoint = text.find('.') != std::string::npos;
    require(hasPoint ? text.compare(0, seconds.size() + 1, seconds + '.') == 0 : seconds.empty());
}
