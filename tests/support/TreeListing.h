#pragma once

#include <string>

/// Listings of the whole tree, as `trctl list --long` prints them; golden/tree.txt describes the
/// format.
namespace TreeListing {

/// Where the listing differs from what is expected: a paragraph for each address that is missing,
/// unexpected or different. Empty when the two agree. \p expected may hold comments and shapes.
std::string differences(const std::string& expected, const std::string& listing);

}  // namespace TreeListing
