#pragma once

#include <string>
#include <vector>

namespace trctl {

/// The candidate that a mistyped word most likely means: the one that takes the fewest insertions,
/// removals, replacements and swaps of neighbours, or begins with the word. Empty when all take
/// more than one for every three bytes of the word. Pure.
std::string nearest(const std::string& word, const std::vector<std::string>& candidates);

/// The end of a complaint: "; did you mean `get`?", or empty without a candidate.
std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace trctl
