#include "model/NotifTable.h"
#include "tests/fuzz/Fuzz.h"

#include <string>

// A line of the client's notification file: anything may stand there while the client rewrites it.
void tryInput(const std::string& line) {
    std::string parameter, value, notification, type;
    TR::NotifTable::parseJsonLine(line, parameter, value, notification, type);
}
