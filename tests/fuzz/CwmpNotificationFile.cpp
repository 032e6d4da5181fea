#include "cwmp/Snapshot.h"
#include "cwmp/UciText.h"
#include "tests/fuzz/Fuzz.h"

#include <string>

// The notification file, which somebody else may have written, and what uci prints. Rows that were
// read are written and read as they are.
void tryInput(const std::string& text) {
    const std::string written = cwmp::formatRows(cwmp::parseRows(text));
    require(cwmp::formatRows(cwmp::parseRows(written)) == written);
    cwmp::parseUciShow(text);
}
