#pragma once

#include <chrono>

/// What the daemon sets up for its whole process, and how main takes SIGINT. Called by main only.
namespace TR::Process {

/// Called before anything opens a descriptor or starts a thread. Opens /dev/null for each of
/// descriptors 0 to 2 that is closed, and sets up the allocator and the signals. SIGINT is blocked
/// in this thread and in all that it starts. A reader of the log that is gone (SIGPIPE) and a limit
/// on a file's size (SIGXFSZ) make the write fail instead of ending the process.
void setUp();

/// Waits for SIGINT, at most this long; true when it came. It must be blocked: it then also counts
/// when it came before the wait.
bool waitForInterrupt(std::chrono::seconds limit);

/// From now on SIGINT interrupts the calling thread, and runs its handler there.
void letInterruptThrough();

}  // namespace TR::Process
