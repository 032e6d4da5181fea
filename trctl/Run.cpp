#include "trctl/Run.h"

#include "client/BusDaemon.h"
#include "trctl/Commands.h"
#include "trctl/Report.h"

#include <clocale>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <exception>

#include <fcntl.h>
#include <unistd.h>

namespace trctl {

namespace {

constexpr std::size_t kOutputBytes = std::size_t{64} << 10U;

int runOnBus(const Options& options) {
    const Terminal terminal(options.color);
    Output out;
    // The daemon may go in the middle; what it has answered until then is printed all the same.
    const auto flushed = [&](int status) {
        out.flush();
        return status;
    };
    try {
        client::BusDaemon daemon(options.bus);
        Context context{daemon, options, terminal, out};
        return flushed(runCommand(context));
    } catch (const client::Unreachable& loss) {
        flushed(kUnreachable);
        complain(loss.what());
        std::fprintf(stderr, "%s\n", loss.advice().c_str());
        return kUnreachable;
    } catch (const client::Refused& refusal) {
        flushed(kRefused);
        complain(refusal.what());
        return kRefused;
    }
}

// The bus must not get the descriptor of a standard output that was closed.
void openStandardDescriptors() {
    for (int descriptor = 0; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) >= 0) continue;
        // The lowest free one is taken.
        if (open("/dev/null", O_RDWR) < 0) return;
    }
}

}  // namespace

int run(int argc, const char* const* argv) {
    openStandardDescriptors();
    // A failing write shows when the reader of a pipe has gone.
    std::signal(SIGPIPE, SIG_IGN);
    // A frame of a plot is one write, and so are thousands of lines.
    std::setvbuf(stdout, nullptr, _IOFBF, kOutputBytes);
    // Whether the terminal takes UTF-8; numbers stay as they are everywhere.
    std::setlocale(LC_CTYPE, "");  // one thread; NOLINT(concurrency-mt-unsafe)
    try {
        int status = kDone;
        const auto options = parseOptions(argc, argv, status);
        if (!options) return status;
        return options->snapshot.empty() ? runOnBus(*options) : reportOfSnapshot(*options);
    } catch (const std::exception& error) {
        complain(error.what());
        return kRefused;
    }
}

}  // namespace trctl
