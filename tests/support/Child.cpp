#include "tests/support/Child.h"

#include "tests/support/Box.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <sstream>
#include <system_error>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kCannotRun = 127;

[[noreturn]] void become(const std::vector<std::string>& command, const std::string& output,
                         const Child::Environment& environment,
                         const std::function<void()>& prepare) {
    const int file = open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    // A test may have SIGINT blocked or ignored; a daemon is started with neither.
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    signal(SIGINT, SIG_DFL);
    for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
    if (prepare) prepare();
    becomeProgram(command, {});
}

pid_t spawn(const std::vector<std::string>& command, const std::string& output,
            const Child::Environment& environment, const std::function<void()>& prepare) {
    const pid_t pid = fork();
    if (pid < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (pid == 0) become(command, output, environment, prepare);
    return pid;
}

}  // namespace

void becomeProgram(const std::vector<std::string>& command, const Child::Environment& environment) {
    for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(kCannotRun);
}

std::ostream& operator<<(std::ostream& stream, const ExitStatus& status) {
    return stream << "status " << status.code << " signal " << status.signal;
}

std::size_t threadCountOf(pid_t pid) {
    std::error_code error;
    const std::filesystem::directory_iterator threads("/proc/" + std::to_string(pid) + "/task",
                                                      error);
    return static_cast<std::size_t>(std::distance(begin(threads), end(threads)));
}

Child::Child(const std::vector<std::string>& command, const std::string& output,
             const Environment& environment, const std::function<void()>& prepare)
    : pid_(spawn(command, output, environment, prepare)), outputFile_(output) {}

Child::~Child() {
    if (!isRunning()) return;
    // A build for coverage writes its counts only when it ends in order.
    if (std::getenv("KELM_COUNTS_FOLDER") != nullptr) {
        send(SIGINT);
        if (waitForEnd()) return;
    }
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

bool Child::isRunning() {
    if (end_) return false;
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) == 0) return true;
    end_ = ExitStatus{};
    if (WIFEXITED(status)) end_->code = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) end_->signal = WTERMSIG(status);
    return false;
}

void Child::send(int signal) const {
    if (!end_) kill(pid_, signal);
}

std::optional<ExitStatus> Child::waitForEnd(std::chrono::milliseconds deadline) {
    box::waitUntil([this] { return !isRunning(); }, deadline);
    return end_;
}

std::string Child::output() const {
    return box::readFile(outputFile_);
}

unsigned long long Child::cpuTicks() const {
    const std::string stat = box::readFile("/proc/" + std::to_string(pid_) + "/stat");
    const std::size_t nameEnd = stat.rfind(')');
    if (nameEnd == std::string::npos) return 0;
    std::istringstream fields(stat.substr(nameEnd + 2));
    std::string skipped;
    for (int i = 0; i < 11; ++i) fields >> skipped;  // up to the 14th field, utime
    unsigned long long user = 0, system = 0;
    fields >> user >> system;
    return user + system;
}
