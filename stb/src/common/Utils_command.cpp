#include "stb/src/common/Lines.h"
#include "stb/src/common/Utils.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <memory>

namespace TR {
namespace Utils {
namespace {

constexpr std::size_t kPieceBytes = 998;

struct PipeCloser {
    void operator()(FILE* pipe) const { pclose(pipe); }
};

}  // namespace

std::string getCmdOutput(const std::string& command) {
    const std::unique_ptr<FILE, PipeCloser> pipe(popen(command.c_str(), "re"));
    std::string output;
    if (!pipe) {
        return output;
    }
    std::array<char, kPieceBytes> piece{};
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe.get())) {
        output.append(piece.data(), count);
    }
    return output;
}

std::vector<std::string> processPipe(const std::string& command) {
    return splitLines(getCmdOutput(command), LineFeeds::Keep);
}

// system() would have SIGINT ignored meanwhile, and the kernel drops one that is pending when that
// begins: the daemon would not stop.
void runCommand(const std::string& command) {
    const std::unique_ptr<FILE, PipeCloser> inputOfCommand(popen(command.c_str(), "we"));
}

}  // namespace Utils
}  // namespace TR
