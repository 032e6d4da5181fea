#include "trctl/Run.h"

#include "trctl/Commands.h"
#include "trctl/Completion.h"
#include "trctl/Connection.h"
#include "trctl/Report.h"
#include "trctl/Text.h"

#include <algorithm>
#include <chrono>
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

std::chrono::milliseconds timeOf(double seconds) {
    return std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
}

// The daemon needs a moment for its last answer to a `wait` whose time is up.
constexpr std::chrono::milliseconds kLastAnswer{1'000};

void limitTime(client::BusDaemon& daemon, const Options& options) {
    const auto time = timeOf(options.timeoutSeconds);
    if (options.command == "wait")
        daemon.setTimeLeft(time + kLastAnswer);
    else
        daemon.setTimePerCall(time);
}

int complainOfLoss(const client::Unreachable& loss, const std::string& tried) {
    complain(loss.what());
    complainLines(loss.advice() + tried);
    return kUnreachable;
}

int runCommandOn(Connection& connection, const Options& options) {
    const Terminal terminal(options.color);
    Output out;
    // The daemon may go in the middle; what it has answered until then is printed all the same.
    const auto flushed = [&](int status) {
        out.flush();
        return status;
    };
    try {
        Context context{connection.daemon(), options, terminal, out};
        return flushed(runCommand(context));
    } catch (const client::Unreachable& loss) {
        flushed(kUnreachable);
        return complainOfLoss(loss, connection.tried());
    } catch (const client::Refused& refusal) {
        flushed(kRefused);
        complain(refusal.what());
        return kRefused;
    }
}

int runOnBus(const Options& options) {
    try {
        Connection connection(options.bus, std::max(timeOf(options.timeoutSeconds), kLastAnswer));
        limitTime(connection.daemon(), options);
        return runCommandOn(connection, options);
    } catch (const client::Unreachable& loss) {
        return complainOfLoss(loss, "");
    }
}

// The exit status alone is left, with the report's progress gone too.
void closeStandardError() {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) return;
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
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
        // For the shells' completion; people need not know it.
        if (argc == 3 && argv[1] == std::string("complete")) return complete(argv[2]);
        int status = kDone;
        const auto options = parseOptions(argc, argv, status);
        if (!options) return status;
        if (options->quiet) closeStandardError();
        return options->snapshot.empty() ? runOnBus(*options) : reportOfSnapshot(*options);
    } catch (const std::exception& error) {
        complain(error.what());
        return kRefused;
    }
}

}  // namespace trctl
