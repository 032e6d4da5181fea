#pragma once

#include "client/Daemon.h"
#include "trctl/Options.h"
#include "trctl/Output.h"
#include "trctl/Paths.h"
#include "trctl/Terminal.h"

#include <string>

namespace trctl {

/// What every command works with; the caller owns all of it.
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

/// Runs the command that the options name.
int runCommand(Context& context);

/// Reports what was not found and suggests what to write instead. Returns the exit status.
int complainOfUnmatched(Context& context, const Addresses& unmatched);

/// The text, cut at the right edge of a terminal; \p taken columns are already written.
std::string fitted(const Context& context, const std::string& text, std::size_t taken);

/// The value, or the reason why the daemon refuses it.
std::string valueOrReason(client::Daemon& daemon, const std::string& address);

/// object, integer or string.
const char* typeOf(const std::string& address, const std::string& value);

/// A line `address = value`, escaped; \p columns is the room for the address.
std::string valueLine(const std::string& address, const std::string& value,
                      std::size_t columns = 0);

}  // namespace trctl
