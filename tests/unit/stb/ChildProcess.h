#pragma once

#include <functional>
#include <string>

#include <sys/wait.h>

/// What a child process left behind.
struct ChildResult {
    std::string out;
    std::string err;
    int status = 0;  // as waitpid() gives it

    bool exitedWith(int code) const { return WIFEXITED(status) && WEXITSTATUS(status) == code; }
    bool wasKilledBy(int signal) const { return WIFSIGNALED(status) && WTERMSIG(status) == signal; }
};

/// Runs the body in a fork of this process, for what a process does to itself: dying, changing its
/// environment or limits, filling its process-wide objects. A body that hangs is killed after a
/// minute. Call it only while no other thread runs.
ChildResult runInChild(const std::function<void()>& body);
