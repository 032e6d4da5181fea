#include "dbus/Utf8.h"

#include <dbus/dbus.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// libdbus accepts the result for any input, and input that it accepts is unchanged.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string repaired = TR::toValidUtf8(text);
    if (repaired.find('\0') != std::string::npos) std::abort();
    if (dbus_validate_utf8(repaired.c_str(), nullptr) == FALSE) std::abort();
    const bool hadNul = text.find('\0') != std::string::npos;
    const bool wasValid = !hadNul && dbus_validate_utf8(text.c_str(), nullptr) != FALSE;
    if (wasValid != (repaired == text)) std::abort();
    if (TR::toValidUtf8(repaired) != repaired) std::abort();
    return 0;
}
