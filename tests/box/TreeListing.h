#pragma once

#include <string>

/// Listings of the whole tree, as `trctl list --long` prints them; golden/tree.txt describes the
/// format.
namespace TreeListing {

/// Where the listing departs from what is expected of it, an address that is missing, not expected
/// or different a paragraph, the first ten of them; empty when nowhere. What is expected may hold
/// comments and shapes.
std::string differences(const std::string& expected, const std::string& listing);

}  // namespace TreeListing
