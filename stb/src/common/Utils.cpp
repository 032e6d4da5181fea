#include "stb/src/common/Utils.h"

#include "stb/src/common/LogFiles.h"

#include <cctype>

namespace TR {
namespace Utils {

std::string toLowerString(const std::string& text) {
    std::string result = text;
    toLower(result);
    return result;
}

std::string toUpperString(const std::string& text) {
    std::string result = text;
    toUpper(result);
    return result;
}

void toLower(std::string& text) {
    for (char& byte : text) {
        byte = static_cast<char>(std::tolower(static_cast<unsigned char>(byte)));
    }
}

void toUpper(std::string& text) {
    for (char& byte : text) {
        byte = static_cast<char>(std::toupper(static_cast<unsigned char>(byte)));
    }
}

}  // namespace Utils

char* getLogs() {
    return joinLogFiles("/tmp/syslog");
}

std::string readMemInfo() {
    return Utils::getFileContent("/proc/meminfo");
}

}  // namespace TR
