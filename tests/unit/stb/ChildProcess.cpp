#include "tests/unit/stb/ChildProcess.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr unsigned kLongestLifeSeconds = 60;

struct Pipe {
    Pipe() {
        if (pipe2(ends, O_CLOEXEC) != 0) std::abort();
    }
    int ends[2] = {-1, -1};
};

[[noreturn]] void runBody(const std::function<void()>& body, const Pipe& out, const Pipe& err) {
    dup2(out.ends[1], STDOUT_FILENO);
    dup2(err.ends[1], STDERR_FILENO);
    for (const Pipe* pipe : {&out, &err}) {
        close(pipe->ends[0]);
        close(pipe->ends[1]);
    }
    alarm(kLongestLifeSeconds);
    body();
    std::fflush(nullptr);
    _exit(0);
}

// False at the end of the stream.
bool readSome(int descriptor, std::string& text) {
    std::array<char, 4096> piece{};
    const ssize_t count = read(descriptor, piece.data(), piece.size());
    if (count < 0) return errno == EINTR;
    text.append(piece.data(), static_cast<std::size_t>(count));
    return count > 0;
}

void drain(int out, int err, ChildResult& result) {
    std::array<pollfd, 2> streams{pollfd{out, POLLIN, 0}, pollfd{err, POLLIN, 0}};
    std::array<std::string*, 2> texts{&result.out, &result.err};
    while (streams[0].fd >= 0 || streams[1].fd >= 0) {
        poll(streams.data(), streams.size(), -1);
        for (std::size_t i = 0; i < streams.size(); ++i)
            if (streams[i].fd >= 0 && streams[i].revents != 0 &&
                !readSome(streams[i].fd, *texts[i]))
                streams[i].fd = -1;
    }
}

}  // namespace

ChildResult runInChild(const std::function<void()>& body) {
    const Pipe out;
    const Pipe err;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) runBody(body, out, err);
    close(out.ends[1]);
    close(err.ends[1]);
    ChildResult result;
    drain(out.ends[0], err.ends[0], result);
    close(out.ends[0]);
    close(err.ends[0]);
    while (waitpid(child, &result.status, 0) < 0 && errno == EINTR) {
    }
    return result;
}
