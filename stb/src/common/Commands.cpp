#include "stb/src/common/Commands.h"

#include "stb/src/common/Text.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <ctime>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace TR::Utils {
namespace {

constexpr std::size_t kPieceBytes = 998;
constexpr int kNoOutput = -1;

// The process groups of the running commands, for killRunningCommands(). Two threads of the daemon
// run commands, one at a time each.
constexpr pid_t kFree = 0;
constexpr pid_t kStarting = -1;
std::array<std::atomic<pid_t>, 8> groups{};
std::atomic<bool> isEnding{false};

std::atomic<pid_t>* claimGroup() {
    for (auto& group : groups) {
        pid_t expected = kFree;
        if (group.compare_exchange_strong(expected, kStarting)) return &group;
    }
    return nullptr;
}

// The output first: without standard descriptors the pipe may be number 0 or 2.
void setFiles(posix_spawn_file_actions_t* files, int output) {
    const auto open = [files](int descriptor, int flags) {
        posix_spawn_file_actions_addopen(files, descriptor, "/dev/null", flags, 0);
    };
    if (output == kNoOutput)
        open(STDOUT_FILENO, O_WRONLY);
    else
        posix_spawn_file_actions_adddup2(files, output, STDOUT_FILENO);
    open(STDIN_FILENO, O_RDONLY);
    open(STDERR_FILENO, O_WRONLY);
}

// The daemon itself blocks SIGINT and ignores the two that are set to their defaults here.
void setSignals(posix_spawnattr_t* attributes) {
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGXFSZ);
    posix_spawnattr_setsigdefault(attributes, &signals);
    posix_spawnattr_setflags(
        attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
}

/// The shell's process, which leads its own group; kFree when it cannot be started.
pid_t spawn(const char* command, int output) {
    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&files);
    posix_spawnattr_init(&attributes);
    setFiles(&files, output);
    setSignals(&attributes);
    const char* const arguments[] = {"sh", "-c", command, nullptr};
    pid_t pid = kFree;
    const int error = posix_spawn(&pid, "/bin/sh", &files, &attributes,
                                  const_cast<char* const*>(arguments), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error == 0 ? pid : kFree;
}

/// One run of a command. The destructor waits for its end.
class Command {
  public:
    Command(const std::string& text, int output)
        : group_(claimGroup()),
          pid_(group_ == nullptr || isEnding ? kFree : spawn(text.c_str(), output)) {
        if (group_ != nullptr) *group_ = pid_;
        // killRunningCommands() may have looked before and waits for a slow start only so long.
        if (isEnding && pid_ != kFree) kill(-pid_, SIGKILL);
    }
    ~Command() {
        if (pid_ == kFree) return;
        siginfo_t ignored;
        while (waitid(P_PID, static_cast<id_t>(pid_), &ignored, WEXITED | WNOWAIT) < 0 &&
               errno == EINTR) {
        }
        // Cleared before the number is free for another process, which must not be killed.
        *group_ = kFree;
        while (waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

  private:
    std::atomic<pid_t>* const group_;
    const pid_t pid_;
};

/// The reading end of a pipe, owned.
class ReadEnd {
  public:
    explicit ReadEnd(int descriptor) : descriptor_(descriptor) {}
    ~ReadEnd() { close(descriptor_); }
    ReadEnd(const ReadEnd&) = delete;
    ReadEnd& operator=(const ReadEnd&) = delete;

    std::string readAll() const {
        std::string content;
        std::array<char, kPieceBytes> piece{};
        while (true) {
            const ssize_t count = read(descriptor_, piece.data(), piece.size());
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return content;
            content.append(piece.data(), static_cast<std::size_t>(count));
        }
    }

  private:
    const int descriptor_;
};

}  // namespace

std::string getCmdOutput(const std::string& command) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {};
    const Command running(command, ends[1]);
    close(ends[1]);
    // Closed before the wait for the command's end: one that still prints when memory runs out here
    // gets SIGPIPE.
    const ReadEnd output(ends[0]);
    return output.readAll();
}

std::vector<std::string> processPipe(const std::string& command) {
    return splitLines(getCmdOutput(command), LineFeeds::Keep);
}

void runCommand(const std::string& command) {
    const Command running(command, kNoOutput);
}

void killRunningCommands() {
    constexpr timespec kMillisecond{0, 1'000'000};
    constexpr int kLongestStart = 100;  // milliseconds
    isEnding = true;
    for (const auto& group : groups) {
        for (int i = 0; i < kLongestStart && group == kStarting; ++i)
            nanosleep(&kMillisecond, nullptr);
        const pid_t running = group;
        if (running > kFree) kill(-running, SIGKILL);
    }
}

}  // namespace TR::Utils
