#pragma once

#include "trctl/Paths.h"
#include "trctl/Tree.h"

#include <optional>
#include <string>
#include <vector>

namespace trctl {

/// What the commands print with --json, escaped, without a line end behind it. It is valid JSON
/// whatever the texts hold: bytes that are not UTF-8 become U+FFFD.

/// An array of texts.
std::string listJson(const Addresses& addresses);

struct LongRow {
    std::string address;
    bool isWritable;
    bool isForcedInform;
    std::string type;
    std::string value;
};
/// An array of objects; the value of an object is null.
std::string listJson(const std::vector<LongRow>& rows);

/// Objects in objects, from the top. Names are without their points; an object keeps it where a
/// parameter has the same name.
std::string treeJson(const std::vector<Leaf>& leaves);

/// Nothing where a side does not have the parameter.
struct Difference {
    std::string address;
    std::optional<std::string> file;
    std::optional<std::string> daemon;
};
/// An array of objects; a side without the parameter is null.
std::string diffJson(const std::vector<Difference>& differences);

/// `fault` is empty for a good line.
struct ChangeLine {
    std::string text;
    std::string fault;
};
/// An array of the lines; a bad one is an object with "bad", the fault, and "line", the text.
std::string changesJson(const std::vector<ChangeLine>& lines);

}  // namespace trctl
