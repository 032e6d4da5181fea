#include "providers/FrontEndParsing.h"
#include "stb/src/common/Text.h"
#include "tests/fuzz/Fuzz.h"

// Whatever sysctl prints, broken lines and odd numbers included.
void tryInput(const std::string& output) {
    TR::Igmp::kernelSettings(TR::Utils::splitLines(output, TR::Utils::LineFeeds::Keep));
}
