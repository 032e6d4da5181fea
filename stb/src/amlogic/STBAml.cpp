#include "stb/src/amlogic/STBAml.h"

#include "stb/src/common/RegularFile.h"
#include "stb/src/common/STBLogger.h"

#include <array>
#include <cstddef>
#include <sstream>

namespace STBAml {
namespace {

// A fixed place in the log: it does not follow the code.
constexpr const char* kSource = "src/amlogic/STBAml";
constexpr int kCannotOpenLine = 21;

constexpr std::size_t kSysfsPageBytes = 4096;  // no driver's file is longer

}  // namespace

template <>
std::optional<int> getSys<int>(const std::string& path) {
    TR::Utils::RegularFile file(path);
    if (!file.isOpen()) {
        STBLogger_log(kelmLogParams(), "", STBLogLevel::Error, kCannotOpenLine, kSource,
                      "Can't open %s", path.c_str());
        return std::nullopt;
    }
    std::array<char, kSysfsPageBytes> page;
    std::istringstream text(std::string(page.data(), file.read(page.data(), page.size())));
    int number = 0;
    if (!(text >> number)) return std::nullopt;
    return number;
}

}  // namespace STBAml
