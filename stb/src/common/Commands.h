#pragma once

#include <string>
#include <vector>

/// Shell commands. Nothing here logs or takes a lock; any thread may call. A command that cannot be
/// started prints nothing. Each one runs in its own process group, with no signal blocked, SIGPIPE
/// and SIGXFSZ at their defaults, and /dev/null as standard input and standard error: a log whose
/// reader has stalled must not hold a command up.
namespace TR::Utils {

/// What the shell command prints on standard output, whatever its exit status.
std::string getCmdOutput(const std::string& command);

/// The same as lines, each with its line feed.
std::vector<std::string> processPipe(const std::string& command);

/// Waits for the shell command and ignores its status and output.
void runCommand(const std::string& command);

/// Kills every running command with all that it has started, and lets no other one start, because
/// the process is about to end without waiting for them. Safe in a signal handler of a thread that
/// runs no command.
void killRunningCommands();

}  // namespace TR::Utils
