#include "trctl/Terminal.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace trctl {

namespace {

constexpr char kEnter[] = "\x1b[?1049h\x1b[?25l";
constexpr char kLeave[] = "\x1b[?25h\x1b[?1049l";

volatile sig_atomic_t onSecondScreen = 0;
volatile sig_atomic_t resized = 0;

// Safe in a signal handler; a terminal that is gone cannot be restored.
void put(const char* text) {
    const int error = errno;
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, text, std::strlen(text));
    errno = error;
}

void leaveScreen() {
    if (onSecondScreen != 0) put(kLeave);
}

void onInterrupt(int) {
    leaveScreen();
    _exit(EXIT_SUCCESS);
}

// Ends, or stops, as the signal does by default.
void onEnd(int signal) {
    leaveScreen();
    ::signal(signal, SIG_DFL);
    raise(signal);
}

void onContinue(int);

void handle(int signal, void (*handler)(int), int flags) {
    struct sigaction old {};
    sigaction(signal, nullptr, &old);
    if (old.sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(signal, &action, nullptr);
}

void onContinue(int) {
    handle(SIGTSTP, onEnd, SA_RESTART);
    if (onSecondScreen != 0) put(kEnter);
    resized = 1;
}

void onResize(int) {
    resized = 1;
}

bool colorsWanted(ColorMode mode, bool isTerminal) {
    if (mode != ColorMode::Auto) return mode == ColorMode::Always;
    // One thread, and nobody sets a variable; NOLINTNEXTLINE(concurrency-mt-unsafe)
    const char* unwanted = std::getenv("NO_COLOR");
    // NOLINTNEXTLINE(concurrency-mt-unsafe)
    const char* kind = std::getenv("TERM");
    return isTerminal && (unwanted == nullptr || *unwanted == '\0') && kind != nullptr &&
           std::strcmp(kind, "dumb") != 0;
}

}  // namespace

// The locale's name is asked for once; NOLINTNEXTLINE(concurrency-mt-unsafe)
Terminal::Terminal(ColorMode mode)
    : isTerminal_(isatty(STDOUT_FILENO) == 1),
      isUtf8_(std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0),  // NOLINT(concurrency-mt-unsafe)
      isColored_(colorsWanted(mode, isTerminal_)) {}

Terminal::Size Terminal::size() const {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0)
        return {80, 24};
    return {size.ws_col, size.ws_row};
}

std::string Terminal::colored(const char* color, const std::string& text) const {
    if (!isColored_ || text.empty()) return text;
    return std::string("\x1b[") + color + 'm' + text + "\x1b[0m";
}

Waited waitFor(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (true) {
        if (resized != 0) {
            resized = 0;
            return Waited::Resized;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return Waited::Elapsed;
        // No event is asked for, so only the end of the reader shows.
        pollfd output{STDOUT_FILENO, 0, 0};
        const int result = poll(&output, 1, static_cast<int>(left.count()));
        if (result > 0 && (output.revents & (POLLERR | POLLHUP)) != 0) return Waited::ReaderGone;
        if (result == 0) return Waited::Elapsed;
        if (result < 0 && errno != EINTR) return Waited::Elapsed;
    }
}

void endOnInterrupt() {
    handle(SIGINT, onInterrupt, 0);
}

SecondScreen::SecondScreen() {
    for (const int signal : {SIGTERM, SIGHUP, SIGQUIT}) handle(signal, onEnd, 0);
    handle(SIGTSTP, onEnd, SA_RESTART);
    handle(SIGCONT, onContinue, SA_RESTART);
    handle(SIGWINCH, onResize, SA_RESTART);  // a wait ends all the same
    onSecondScreen = 1;
    put(kEnter);
}

SecondScreen::~SecondScreen() {
    leaveScreen();
    onSecondScreen = 0;
}

}  // namespace trctl
