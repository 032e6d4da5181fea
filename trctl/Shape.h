#pragma once

#include <string>
#include <vector>

namespace trctl {

/// The command line as data, read off the parser: what completion offers and where.

struct OptionShape {
    std::string name;   ///< with its dashes
    std::string value;  ///< SECONDS, or the words auto|always|never; empty for a flag
};

struct ArgumentShape {
    std::string name;  ///< PATH, FILE, VALUE, COMMAND, or several of them
    bool isRepeated;
};

struct CommandShape {
    std::string name;
    std::vector<OptionShape> options;
    std::vector<ArgumentShape> arguments;
};

struct Shape {
    std::vector<OptionShape> options;  ///< those of every command
    std::vector<CommandShape> commands;
};
}  // namespace trctl
