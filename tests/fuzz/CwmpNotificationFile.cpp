#include "cwmp/Snapshot.h"
#include "cwmp/UciText.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// The notification file, which somebody else may have written, and what uci prints. Rows that were
// read are written and read as they are.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string written = cwmp::formatRows(cwmp::parseRows(text));
    if (cwmp::formatRows(cwmp::parseRows(written)) != written) std::abort();
    cwmp::parseUciShow(text);
    return 0;
}
