#pragma once

namespace trctl {

/// The whole program. Returns its exit status; nothing leaves it by exception.
int run(int argc, const char* const* argv);

}  // namespace trctl
