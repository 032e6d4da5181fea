#include "trctl/Output.h"

#include "trctl/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <unistd.h>

namespace trctl {

namespace {

// SIGPIPE is ignored, so that a reader that has gone shows as an error.
void checkWritten(bool isWritten) {
    if (isWritten) return;
    if (errno == EPIPE) _exit(EXIT_SUCCESS);
    throw std::system_error(errno, std::generic_category(), "standard output");
}

}  // namespace

void Output::line(std::string_view text) {
    print(text);
    print("\n");
}

void Output::print(std::string_view text) {
    checkWritten(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

void Output::flush() {
    checkWritten(std::fflush(stdout) == 0);
}

void complain(std::string_view text) {
    std::fprintf(stderr, "trctl: %s\n", escaped(text).c_str());
}

void complainLines(std::string_view text) {
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::fprintf(stderr, "%s\n", escaped(text.substr(at, end - at)).c_str());
        at = end + 1;
    }
}

}  // namespace trctl
