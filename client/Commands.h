#pragma once

#include <string>

#include "client/Daemon.h"
#include "client/Options.h"
#include "client/Output.h"
#include "client/Paths.h"
#include "client/Terminal.h"

namespace client {

/// What every command works with, all of it the caller's.
struct Context {
    Daemon& daemon;
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
int diff(Context& context);
int changes(Context& context);

/// Looks the command up that the options name, and runs it.
int runCommand(Context& context);

/// Complains of what was not found, and says what to write instead. The exit status.
int complainOfUnmatched(Context& context, const Addresses& unmatched);

/// The value, or the reason why the daemon does not say it.
std::string valueOrReason(Daemon& daemon, const std::string& address);

/// A line `address = value`, escaped; \p columns is the room for the address.
std::string valueLine(const std::string& address, const std::string& value,
                      std::size_t columns = 0);

}  // namespace client
