#include "cwmp/Program.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace cwmp {

namespace {

constexpr std::size_t kMostOutput = std::size_t{1} << 20;
constexpr int kFirstOther = 3;
// A program may close its output and go on, or leave a child behind that holds it.
constexpr int kLookMilliseconds = 20;

/// A pipe whose ends are closed on every path; -1 for an end that is closed.
struct Pipe {
    Pipe() {
        if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) ends = {-1, -1};
    }
    ~Pipe() {
        closeEnd(0);
        closeEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void closeEnd(std::size_t end) {
        if (ends.at(end) >= 0) close(ends.at(end));
        ends.at(end) = -1;
    }
    std::array<int, 2> ends{-1, -1};
};

/// What the child is to be like; freed on every path.
class Setup {
  public:
    explicit Setup(int output) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&actions_, kFirstOther);
        posix_spawnattr_init(&attributes_);
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~Setup() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    Setup(const Setup&) = delete;
    Setup& operator=(const Setup&) = delete;

    pid_t start(const std::vector<char*>& arguments, const std::vector<char*>& environment) const {
        pid_t child = -1;
        const int failure = posix_spawn(&child, arguments.front(), &actions_, &attributes_,
                                        arguments.data(), environment.data());
        return failure == 0 ? child : -1;
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentWith(
    const std::vector<std::pair<std::string, std::string>>& settings) {
    std::vector<std::string> environment;
    environment.reserve(settings.size());
    for (const auto& [name, value] : settings)
        environment.emplace_back(name).append("=").append(value);
    const auto isSet = [&](const std::string& variable) {
        return std::any_of(settings.begin(), settings.end(), [&](const auto& setting) {
            return variable.compare(0, setting.first.size() + 1, setting.first + '=') == 0;
        });
    };
    for (char** variable = environ; *variable != nullptr; ++variable)
        if (!isSet(*variable)) environment.emplace_back(*variable);
    return environment;
}

// False when there is nothing more to come.
bool readSome(int descriptor, std::string& text) {
    std::array<char, 16384> buffer{};
    while (true) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count > 0) {
            const auto room = kMostOutput - text.size();
            text.append(buffer.data(), std::min(static_cast<std::size_t>(count), room));
        } else if (count == 0 || errno != EINTR) {
            return count != 0 && errno == EAGAIN;
        }
    }
}

// True when the child has ended.
bool reap(pid_t child, Ended& ended) {
    int status = 0;
    const pid_t reaped = waitpid(child, &status, WNOHANG);
    if (reaped == 0) return false;
    ended.how = WIFEXITED(status) ? Ended::How::Exited : Ended::How::Signalled;
    ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : WTERMSIG(status);
    return true;
}

void killGroup(pid_t child) {
    kill(-child, SIGKILL);
    waitpid(child, nullptr, 0);
}

Ended awaitEnd(pid_t child, int output, const Deadline& deadline) {
    Ended ended;
    bool isOpen = output >= 0;
    while (true) {
        pollfd news{isOpen ? output : -1, POLLIN, 0};
        // Behind the end of the output the end of the program is near.
        poll(&news, 1, isOpen || output < 0 ? kLookMilliseconds : 1);
        if (isOpen) isOpen = readSome(output, ended.output);
        if (reap(child, ended)) break;
        if (!deadline.isOver()) continue;
        killGroup(child);
        ended.how = Ended::How::TimedOut;
        return ended;
    }
    if (isOpen) readSome(output, ended.output);
    return ended;
}

}  // namespace

std::string reasonOf(const Ended& ended) {
    switch (ended.how) {
        case Ended::How::Exited:
            return "exit status " + std::to_string(ended.status);
        case Ended::How::Signalled:
            return "ended by signal " + std::to_string(ended.status);
        case Ended::How::TimedOut:
            return "killed, it took too long";
        default:
            return "it cannot be started";
    }
}

Ended runProgram(const std::vector<std::string>& arguments, const Deadline& deadline, Output output,
                 const std::vector<std::pair<std::string, std::string>>& settings) {
    Pipe pipe;
    const bool isRead = output == Output::Read;
    if (pipe.ends[1] < 0) return {};
    // The program's end is an ordinary one.
    fcntl(pipe.ends[1], F_SETFL, 0);
    const Setup setup(isRead ? pipe.ends[1] : STDERR_FILENO);
    const auto environment = environmentWith(settings);
    const pid_t child = setup.start(pointersTo(arguments), pointersTo(environment));
    if (child < 0) return {};
    pipe.closeEnd(1);
    return awaitEnd(child, isRead ? pipe.ends[0] : -1, deadline);
}

}  // namespace cwmp
