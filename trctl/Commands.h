#pragma once

#include "client/Daemon.h"
#include "trctl/Options.h"
#include "trctl/Output.h"
#include "trctl/Paths.h"
#include "trctl/Terminal.h"

#include <string>

namespace trctl {

/// What every command works with, all of it the caller's.
struct Context {
    client::Daemon& daemon;
    const Options& options;
    const Terminal& terminal;
    Output& out;
};

/// Each returns the exit status and throws what the daemon throws.
int get(Context& context);
int set(Context& context);
int list(Context& context);
int tree(Context& context);
int info(Context& context);
int watch(Context& context);
int wait(Context& context);
int diff(Context& context);
int changes(Context& context);
int report(Context& context);

/// Looks the command up that the options name, and runs it.
int runCommand(Context& context);

/// Complains of what was not found, and says what to write instead. The exit status.
int complainOfUnmatched(Context& context, const Addresses& unmatched);

/// The text, on a terminal cut at its right edge; \p taken columns are written already.
std::string fitted(const Context& context, const std::string& text, std::size_t taken);

/// The value, or the reason why the daemon refuses it.
std::string valueOrReason(client::Daemon& daemon, const std::string& address);

/// A line `address = value`, escaped; \p columns is the room for the address.
std::string valueLine(const std::string& address, const std::string& value,
                      std::size_t columns = 0);

}  // namespace trctl
