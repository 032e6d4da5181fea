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
    /// than half: of the names that the daemon has right beneath it, and of the parameters at any
    /// depth. Where the names are the numbers of instances, or there is only one, the object above
    /// decides. Nothing counts that is not beneath the object that holds everything in the file.
    bool covers(const std::string& address);

  private:
    struct Level {
        std::size_t names = 0;
        std::size_t savedNames = 0;
        std::size_t parameters = 0;
        std::size_t savedParameters = 0;
        bool hasNumbersOnly = true;
    };

    void count(const std::string& parameter);
    bool isWhole(const std::string& object);

    std::string root_;
    std::unordered_set<std::string> saved_;  ///< the file's parameters and all objects above them
    std::unordered_map<std::string, Level> levels_;  ///< of the daemon's objects
    std::unordered_set<std::string> counted_;
    std::unordered_map<std::string, bool> whole_;
};

}  // namespace trctl
