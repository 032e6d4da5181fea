#include "cwmp/Run.h"

#include "client/BusAddress.h"
#include "cwmp/BusLink.h"
#include "cwmp/LineReader.h"
#include "cwmp/Options.h"
#include "cwmp/Session.h"
#include "stb/src/common/Text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace cwmp {

namespace {

constexpr int kFirstOther = 3;
constexpr int kWrongCall = 2;
constexpr int kPauseMilliseconds = 200;
constexpr std::int64_t kUsualWaitSeconds = 30;
constexpr std::int64_t kLongestWaitSeconds = std::int64_t{24} * 3600;

const char* variable(const char* name) {
    return std::getenv(name);  // one thread; NOLINT(concurrency-mt-unsafe)
}

Deadline::Milliseconds waitForDaemon() {
    const char* const text = variable("KELM_CWMP_WAIT");
    const auto seconds = TR::Utils::leadingNumber(text == nullptr ? "" : text);
    return std::chrono::seconds(
        std::clamp<std::int64_t>(seconds.value_or(kUsualWaitSeconds), 0, kLongestWaitSeconds));
}

std::string busAddress() {
    const char* const address = variable("DBUS_SESSION_BUS_ADDRESS");
    if (address != nullptr && *address != '\0') return address;
    return client::kPackagedBus;
}

// False when nobody reads the answers any more.
bool pause() {
    pollfd reader{STDOUT_FILENO, 0, 0};
    return poll(&reader, 1, kPauseMilliseconds) == 0;
}

// What the client had open stays with the client; the standard ones are there at any rate.
void tidyDescriptors() {
    int descriptor = 0;
    do descriptor = open("/dev/null", O_RDWR | O_CLOEXEC);
    while (descriptor >= 0 && descriptor < kFirstOther);
    closefrom(kFirstOther);
}

void answerOnStandardOutput(const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
}

/// The real surroundings, made for one life.
class Life {
  public:
    explicit Life(bool isForPeople)
        : session_({model_, watch_, hooks_, answerOnStandardOutput, [] { std::fflush(stdout); },
                    [this] { deadline_ = Deadline(BusLink::kTimePerCommand); }, pause,
                    isForPeople}) {}

    int serveClient() {
        LineReader lines(STDIN_FILENO);
        session_.prompt();
        for (auto line = lines.next(); line && session_.take(*line); line = lines.next()) continue;
        return std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }

    int serve(const std::vector<std::string>& lines) {
        for (const std::string& line : lines) session_.take(line);
        std::fflush(stdout);
        return session_.faultCount() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }

  private:
    Deadline deadline_{BusLink::kTimePerCommand};
    BusLink link_{busAddress(), waitForDaemon(), deadline_, pause};
    UciProgram uci_{deadline_};
    DataModel model_{[this]() -> client::Daemon& { return link_.daemon(); }, uci_};
    NotificationFile file_;
    Watch watch_{model_, file_};
    HookPrograms hooks_;
    Session session_;
};

int runForClient() {
    // One thread yet; NOLINTNEXTLINE(concurrency-mt-unsafe)
    setenv("KELM_LOG_SYSLOG", "1", 0);
    return Life(false).serveClient();
}

}  // namespace

int run(int argc, const char* const* argv) {
    tidyDescriptors();
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    if (words == std::vector<std::string>{"--json-input"}) return runForClient();
    if (words == std::vector<std::string>{"--help"}) return std::fputs(kUsage, stdout) < 0;
    if (words == std::vector<std::string>{"--version"})
        return std::puts("kelm-trd-cwmp " KELM_VERSION) < 0;
    if (const auto lines = linesFor(words)) return Life(true).serve(*lines);
    std::fputs(kUsage, stderr);
    return kWrongCall;
}

}  // namespace cwmp
