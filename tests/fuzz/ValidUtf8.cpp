#include "dbus/Utf8.h"
#include "tests/fuzz/Fuzz.h"

#include <dbus/dbus.h>

#include <string>

// libdbus accepts the result for any input, and input that it accepts is unchanged.
void tryInput(const std::string& text) {
    const std::string repaired = TR::toValidUtf8(text);
    require(repaired.find('\0') == std::string::npos);
    require(dbus_validate_utf8(repaired.c_str(), nullptr) != FALSE);
    const bool hadNul = text.find('\0') != std::string::npos;
    const bool wasValid = !hadNul && dbus_validate_utf8(text.c_str(), nullptr) != FALSE;
    require(wasValid == (repaired == text));
    require(TR::toValidUtf8(repaired) == repaired);
}
