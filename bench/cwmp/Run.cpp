#include "bench/cwmp/Run.h"

#include "bench/whole/Process.h"
#include "tests/support/Child.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

namespace {

double cpuOf(pid_t process) {
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) return 0;
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

void readUntil(int pipe, const std::string& lastLine, std::string& text) {
    std::array<char, 65536> buffer{};
    while (lastLine.empty() || !endsWith(text, lastLine)) {
        const ssize_t count = read(pipe, buffer.data(), buffer.size());
        if (count <= 0) return;
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

struct Started {
    pid_t pid;
    int input, output;
};

Started start(const std::vector<std::string>& command) {
    std::array<int, 2> in{}, out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0) std::abort();
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        becomeProgram(command, {{"KELM_LOG_SYSLOG", "0"}});
    }
    close(in[0]);
    close(out[1]);
    return {pid, in[1], out[0]};
}

}  // namespace

Run measure(const std::vector<std::string>& command, const std::string& input,
            const std::string& lastLine, pid_t daemon) {
    Run run;
    const auto begin = std::chrono::steady_clock::now();
    const double daemonBefore = cpuOf(daemon);
    const Started child = start(command);
    if (write(child.input, input.data(), input.size()) != static_cast<ssize_t>(input.size()))
        std::abort();
    readUntil(child.output, lastLine, run.answer);
    run.wall =
        std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count();
    // A program that has ended keeps its figures until it is waited for.
    run.cpu = cpuOf(child.pid) + cpuOf(daemon) - daemonBefore;
    run.peakKilobytes = statusKilobytes(child.pid, "VmHWM");
    close(child.input);
    close(child.output);
    waitpid(child.pid, nullptr, 0);
    return run;
}

}  // namespace bench
