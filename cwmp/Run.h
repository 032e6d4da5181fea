#pragma once

namespace cwmp {

/// The program; returns its exit status.
int run(int argc, const char* const* argv);

}  // namespace cwmp
