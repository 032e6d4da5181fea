#include "trctl/Archive.h"

#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace trctl {

namespace {

constexpr std::size_t kLargest = std::size_t{256} << 20U;

/// Closes what it holds.
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return number_; }
    void close() {
        if (number_ >= 0) ::close(number_);
        number_ = -1;
    }

  private:
    int number_;
};

std::string reason() {
    return std::generic_category().message(errno);
}

// The archive is its standard input, \p output its standard output; its error messages are dropped,
// because ours give the same reason. -1 when it could not be started.
pid_t startTar(int archive, int output, const std::string& member) {
    const std::array<const char*, 6> words = {"tar", "-xzOf", "-", "--", member.c_str(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, archive, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = -1;
    const int failure = posix_spawnp(&process, words[0], &actions, nullptr,
                                     const_cast<char* const*>(words.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    errno = failure;
    return failure == 0 ? process : -1;
}

// Stops one byte beyond the limit.
std::string readAll(int descriptor) {
    std::string content;
    std::array<char, std::size_t{16} << 10U> piece{};
    while (content.size() <= kLargest) {
        const ssize_t count = read(descriptor, piece.data(), piece.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        content.append(piece.data(), static_cast<std::size_t>(count));
    }
    return content;
}

bool hasSucceeded(pid_t process) {
    int status = 0;
    while (waitpid(process, &status, 0) < 0)
        if (errno != EINTR) return false;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Nothing, with the reason, when tar does not start or does not succeed.
std::optional<std::string> unpacked(int archive, const std::string& member, std::string& error) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        error = reason();
        return std::nullopt;
    }
    Descriptor in(ends[0]);
    Descriptor out(ends[1]);
    const pid_t process = startTar(archive, out.get(), member);
    if (process < 0) {
        error = "tar cannot be started: " + reason();
        return std::nullopt;
    }
    out.close();
    std::string content = readAll(in.get());
    in.close();  // one with more to write gets SIGPIPE
    if (hasSucceeded(process) && content.size() <= kLargest) return content;
    error = content.size() > kLargest ? member + " in it is too large"
                                      : "it is not an archive with " + member + " in it";
    return std::nullopt;
}

}  // namespace

std::optional<std::string> readFromArchive(const std::string& archive, const std::string& member,
                                           std::string& error) {
    const Descriptor file(archive == "-" ? dup(STDIN_FILENO)
                                         : open(archive.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() >= 0) return unpacked(file.get(), member, error);
    error = reason();
    return std::nullopt;
}

}  // namespace trctl
