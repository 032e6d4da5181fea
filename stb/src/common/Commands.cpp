#include "stb/src/common/Commands.h"

#include "stb/src/common/Text.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace TR::Utils {
namespace {

constexpr std::size_t kPieceBytes = 998;

struct PipeCloser {
    void operator()(FILE* pipe) const { pclose(pipe); }
};

// The child has the daemon's descriptors too: without the daemon it must not keep its place on the
// bus.
[[noreturn]] void runAndExit(const char* command, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(EXIT_FAILURE);
    // glibc's system() may run on several threads; NOLINTNEXTLINE(concurrency-mt-unsafe)
    _exit(std::system(command) == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
}

}  // namespace

std::string getCmdOutput(const std::string& command) {
    const std::unique_ptr<FILE, PipeCloser> pipe(popen(command.c_str(), "re"));
    std::string output;
    if (!pipe) return output;
    std::array<char, kPieceBytes> piece{};
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe.get()))
        output.append(piece.data(), count);
    return output;
}

std::vector<std::string> processPipe(const std::string& command) {
    return splitLines(getCmdOutput(command), LineFeeds::Keep);
}

// system() has SIGINT ignored meanwhile, and the kernel drops one that is pending when that begins:
// the daemon would not stop. So it runs in a process of its own, which has its signals to itself.
void runCommand(const std::string& command) {
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) runAndExit(command.c_str(), parent);
    if (child < 0) return;
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace TR::Utils
