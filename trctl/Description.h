#pragma once

#include <optional>
#include <string>

namespace trctl {

/// What docs/parameters.md states about an address, as plain text; empty where it states nothing.
struct Description {
    std::string unit;
    std::string source;
    std::string meaning;
};

/// Nothing for an address that the document does not have.
std::optional<Description> descriptionOf(const std::string& address);

/// The rows of the document: a line "@ PREFIX..." and the rows beneath these prefixes, each
/// NAME|UNIT|SOURCE|MEANING; the name "." is the prefix itself. In a prefix or a name {i} stands
/// for any instance number. A parameter without a source is a constant.
extern const char kParameterTable[];

}  // namespace trctl
