#include "tests/support/TerminalChild.h"

#include "tests/support/Box.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

winsize sizeOf(unsigned short columns, unsigned short rows) {
    winsize size{};
    size.ws_col = columns;
    size.ws_row = rows;
    return size;
}

}  // namespace

TerminalChild::TerminalChild(const std::vector<std::string>& command, unsigned short columns,
                             unsigned short rows, const Child::Environment& environment) {
    winsize size = sizeOf(columns, rows);
    pid_ = forkpty(&terminal_, nullptr, nullptr, &size);
    if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "forkpty");
    if (pid_ == 0) becomeProgram(command, environment);
    fcntl(terminal_, F_SETFD, FD_CLOEXEC);
}

TerminalChild::~TerminalChild() {
    if (!end_) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    close(terminal_);
}

void TerminalChild::type(const std::string& keys) const {
    if (write(terminal_, keys.data(), keys.size()) < 0)
        throw std::system_error(errno, std::generic_category(), "typing");
}

void TerminalChild::resize(unsigned short columns, unsigned short rows) const {
    const winsize size = sizeOf(columns, rows);
    ioctl(terminal_, TIOCSWINSZ, &size);
}

const std::string& TerminalChild::screen() {
    pollfd readable{terminal_, POLLIN, 0};
    while (poll(&readable, 1, 0) > 0) {
        char piece[4096];
        const ssize_t count = read(terminal_, piece, sizeof piece);
        if (count <= 0) break;  // an error when the program's end is closed
        screen_.append(piece, static_cast<std::size_t>(count));
    }
    return screen_;
}

bool TerminalChild::waitForText(const std::string& text, std::size_t from) {
    return box::waitUntil([&] { return screen().find(text, from) != std::string::npos; });
}

std::optional<ExitStatus> TerminalChild::waitForEnd() {
    box::waitUntil([this] {
        screen();  // a full terminal would keep it from ending
        int status = 0;
        if (end_ || waitpid(pid_, &status, WNOHANG) != pid_) return end_.has_value();
        end_ = ExitStatus{};
        if (WIFEXITED(status)) end_->code = WEXITSTATUS(status);
        if (WIFSIGNALED(status)) end_->signal = WTERMSIG(status);
        return true;
    });
    return end_;
}
