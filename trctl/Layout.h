#pragma once

#include "trctl/Commands.h"

#include <cstddef>
#include <string>

namespace trctl {

/// How lines fit the terminal, so that none wraps. Names lose their left ends, values their right
/// ones. Elsewhere than on a terminal, and with --wide, all texts stay as they are. All texts are
/// escaped ones.

/// The columns of a line; more than any text has when nothing is cut.
std::size_t lineColumns(const Context& context);

/// The text, cut at the right edge; \p taken columns are already written.
std::string fitted(const Context& context, const std::string& text, std::size_t taken);

/// The name, cut at its left; \p taken columns of the line are not for it. It gets half of the line
/// in any case.
std::string fittedName(const Context& context, const std::string& name, std::size_t taken);

/// A line `address = value` behind \p ahead.
std::string fittedLine(const Context& context, const std::string& ahead, const std::string& address,
                       const std::string& value);

}  // namespace trctl
