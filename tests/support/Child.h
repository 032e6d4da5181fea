#pragma once

#include "tests/support/Box.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <sys/types.h>

/// How a process ended.
struct ExitStatus {
    int code = 0;    ///< its exit status, when no signal ended it
    int signal = 0;  ///< the signal that ended it, or 0

    bool operator==(const ExitStatus& other) const {
        return code == other.code && signal == other.signal;
    }
};
std::ostream& operator<<(std::ostream& stream, const ExitStatus& status);

/// The threads of a process; 0 when it has ended.
std::size_t threadCountOf(pid_t pid);

/// Replaces this process by the program; exits with status 127 when it is missing.
[[noreturn]] void becomeProgram(
    const std::vector<std::string>& command,
    const std::vector<std::pair<std::string, std::string>>& environment);

/// A child process of a test, its output in a file. Killed and reaped with the object.
class Child {
  public:
    using Environment = std::vector<std::pair<std::string, std::string>>;

    /// \p output takes standard output and standard error; \p prepare runs in the new process, last
    /// before the program. Throws std::system_error when no process can be started; a program that
    /// does not exist ends with status 127.
    Child(const std::vector<std::string>& command, const std::string& output,
          const Environment& environment = {}, const std::function<void()>& prepare = {});
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return pid_; }
    bool isRunning();
    void send(int signal) const;
    /// Nothing when it still runs at the deadline.
    std::optional<ExitStatus> waitForEnd(std::chrono::milliseconds deadline = box::kDeadline);
    /// What it has printed so far.
    std::string output() const;
    /// CPU time that it has used so far, in clock ticks; 0 when it has ended.
    unsigned long long cpuTicks() const;
    std::size_t threadCount() const { return threadCountOf(pid_); }

  private:
    pid_t pid_;
    std::string outputFile_;
    std::optional<ExitStatus> end_;
};
