#include "model/NotifTable.h"

#include <cstddef>
#include <cstdint>
#include <string>

// A line of the client's notification file: anything may stand there while the client rewrites it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string line(reinterpret_cast<const char*>(data), size);
    std::string parameter, value, notification, type;
    TR::NotifTable::parseJsonLine(line, parameter, value, notification, type);
    return 0;
}
