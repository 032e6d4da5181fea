#include "trctl/Shape.h"

#include <CLI/CLI.hpp>

namespace trctl {

namespace {

std::vector<OptionShape> optionsOf(const CLI::App& app) {
    std::vector<OptionShape> shapes;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames()) {
            const bool isFlag = option->get_items_expected_max() == 0;
            shapes.push_back({"--" + name, isFlag ? "" : option->get_type_name()});
        }
    return shapes;
}

CommandShape commandOf(const CLI::App& app) {
    CommandShape shape{app.get_name(), optionsOf(app), {}};
    for (const CLI::Option* option : app.get_options())
        if (option->get_positional())
            shape.arguments.push_back(
                {option->get_single_name(), option->get_items_expected_max() > 1});
    return shape;
}

}  // namespace

Shape shapeOf(const CLI::App& app) {
    Shape shape{optionsOf(app), {}};
    for (const CLI::App* command : app.get_subcommands(nullptr))
        shape.commands.push_back(commandOf(*command));
    return shape;
}

}  // namespace trctl
