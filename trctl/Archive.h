#pragma once

#include <optional>
#include <string>

namespace trctl {

/// One file of a gzipped tar archive, unpacked by the `tar` in PATH, which gets the archive as its
/// standard input: the name of the archive is never an argument. \p archive is a path, - is
/// standard input. Nothing, and the reason in \p error, when the archive cannot be read, does not
/// hold \p member, or holds more than 256 MiB of it. May be called on one thread only.
std::optional<std::string> readFromArchive(const std::string& archive, const std::string& member,
                                           std::string& error);

}  // namespace trctl
