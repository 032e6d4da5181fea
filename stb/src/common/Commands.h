#pragma once

#include <string>
#include <vector>

/// Shell commands. Nothing here logs or takes a lock; any thread may call. A command that cannot be
/// started prints nothing.
namespace TR::Utils {

/// What the shell command prints on standard output, whatever its exit status.
std::string getCmdOutput(const std::string& command);

/// The same as lines, each with its line feed.
std::vector<std::string> processPipe(const std::string& command);

/// Waits for the shell command and ignores its status. It inherits stdout and stderr.
void runCommand(const std::string& command);

}  // namespace TR::Utils
