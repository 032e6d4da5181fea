#pragma once

#include "trctl/Paths.h"

#include <string>
#include <unordered_map>
#include <unordered_set>

namespace trctl {

/// Which part of the tree a saved file covers, so that a parameter that only the daemon has can be
/// judged: added since, or not saved. The file does not record what was asked for; the part is
/// derived from what it has and what the daemon has now.
class SavedPart {
  public:
    SavedPart(const Addresses& saved, const Addresses& now);

    /// The address branches off, from what the file has, at an object of which the file has more
    /// than half of the names that the daemon has right beneath it. Where these are the numbers of
    /// instances, or one name only, the object above decides. Nothing counts that is not beneath
    /// the object that holds everything in the file.
    bool covers(const std::string& address);

  private:
    struct Level {
        std::size_t names = 0;
        std::size_t saved = 0;
        bool hasNumbersOnly = true;
    };

    bool isWhole(const std::string& object);

    std::string root_;
    std::unordered_set<std::string> saved_;  ///< the file's parameters and all objects above them
    std::unordered_map<std::string, Level> levels_;
    std::unordered_map<std::string, bool> whole_;
};

}  // namespace trctl
