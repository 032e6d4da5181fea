#include "trctl/Nearest.h"

#include <algorithm>

namespace trctl {

namespace {

std::size_t distance(const std::string& from, const std::string& to) {
    // Row by row of the usual table; a swap looks two rows back.
    std::vector<std::size_t> older, old, row(to.size() + 1);
    for (std::size_t j = 0; j <= to.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= from.size(); ++i) {
        older = std::move(old);
        old = row;
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = old[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            row[j] = std::min({replaced, old[j] + 1, row[j - 1] + 1});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[j] = std::min(row[j], older[j - 2] + 1);
        }
    }
    return row.back();
}

}  // namespace

std::string nearest(const std::string& word, const std::vector<std::string>& candidates) {
    // Beyond this it is not a mistyped word; the table would only cost.
    constexpr std::size_t kLongest = 64;
    if (word.empty() || word.size() > kLongest) return "";
    std::string found;
    std::size_t least = (word.size() + 2) / 3 + 1;
    for (const std::string& candidate : candidates) {
        const bool isStart = word.size() > 1 && candidate.compare(0, word.size(), word) == 0;
        const std::size_t steps = isStart ? 1 : distance(word, candidate);
        if (steps >= least) continue;
        least = steps;
        found = candidate;
    }
    return found;
}

std::string didYouMean(const std::string& word, const std::vector<std::string>& candidates) {
    const std::string meant = nearest(word, candidates);
    return meant.empty() ? "" : "; did you mean `" + meant + "`?";
}

}  // namespace trctl
