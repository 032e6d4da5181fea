#include "trctl/Output.h"

#include "trctl/Text.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <unistd.h>

namespace trctl {

namespace {
constexpr std::size_t kPiece = std::size_t{64} << 10U;
}

void Output::line(std::string_view text) {
    print(text);
    print("\n");
}

void Output::print(std::string_view text) {
    gathered_ += text;
    if (gathered_.size() >= kPiece) flush();
}

void Output::flush() {
    std::string_view rest = gathered_;
    while (!rest.empty()) {
        const ssize_t written = write(STDOUT_FILENO, rest.data(), rest.size());
        if (written >= 0)
            rest.remove_prefix(static_cast<std::size_t>(written));
        else if (errno == EPIPE)
            _exit(EXIT_SUCCESS);
        else if (errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "standard output");
    }
    gathered_.clear();
}

void complain(std::string_view text) {
    std::fprintf(stderr, "trctl: %s\n", escaped(text).c_str());
}

}  // namespace trctl
