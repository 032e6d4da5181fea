#pragma once

#include <chrono>

namespace TR::Interrupt {

/// Keeps SIGINT out of the calling thread and of every thread and command that it starts from here
/// on. A blocked signal waits instead of being dropped, also while `system` ignores SIGINT for a
/// command's sake.
void block();

/// Waits for SIGINT to arrive, at most this long; true when it did. The calling thread has it
/// blocked, so no handler runs beside the program: the caller deals with it in its own time.
bool wait(std::chrono::milliseconds limit);

}  // namespace TR::Interrupt
