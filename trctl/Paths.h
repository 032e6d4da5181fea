#pragma once

#include <string>
#include <vector>

namespace trctl {

/// What people name on the command line, found in the daemon's list: a parameter, an object
/// with its point (everything beneath it), or a Pattern. A pattern with a point at its end stands
/// for everything beneath the objects that it names, one without for what it names.

using Addresses = std::vector<std::string>;

struct Selection {
    Addresses found;      ///< in the order of the paths, each once
    Addresses unmatched;  ///< the paths that name nothing, as they were given
};

/// \p listed need not be in order. Without paths everything is found.
Selection select(Addresses listed, const Addresses& paths);

/// The same, but an object's path names the object itself.
Selection selectThemselves(Addresses listed, const Addresses& paths);

/// The addresses that none of the paths names.
Addresses without(Addresses found, const Addresses& paths);

/// The addresses one level beneath each of these objects, or at the top without any; where more
/// follows they end with a point. Nothing for the path of a parameter. A pattern with a point at
/// its end stands for every object that it names.
Addresses nextLevel(Addresses listed, const Addresses& objects);

bool isObject(const std::string& path);

}  // namespace trctl
