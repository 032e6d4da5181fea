#include "trctl/Options.h"

#include "trctl/CommandLine.h"
#include "trctl/HelpTexts.h"
#include "trctl/Output.h"
#include "trctl/UsageError.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace trctl {

namespace {

int print(const std::string& text) {
    Output out;
    out.print(text);
    out.flush();
    return kDone;
}

int rejectCall(const std::string& complaint, const std::string& command) {
    complain(complaint);
    complain("for more information: trctl " + command + (command.empty() ? "" : " ") + "--help");
    return kUsage;
}

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

Shape shapeOf(const CLI::App& app) {
    Shape shape{optionsOf(app), {}};
    for (const CLI::App* command : app.get_subcommands(nullptr))
        shape.commands.push_back(commandOf(*command));
    return shape;
}

UsageError usageErrorOf(const CLI::App& app, const CLI::ParseError& error) {
    const auto commands = app.get_subcommands();
    return {error.get_name(), error.what(), commands.empty() ? "" : commands.front()->get_name(),
            app.remaining(true)};
}

// As --help prints it without a command or behind one; the app would print that of `help` itself.
int printHelp(const CLI::App& app, const std::string& name) {
    const auto mode = CLI::AppFormatMode::Normal;
    if (name.empty()) return print(app.get_formatter()->make_help(&app, app.get_name(), mode));
    const auto commands = app.get_subcommands(nullptr);
    const auto command = std::find_if(commands.begin(), commands.end(),
                                      [&](const CLI::App* one) { return one->get_name() == name; });
    if (command != commands.end()) return print((*command)->help(app.get_name()));
    return rejectCall(unknownCommand(shapeOf(app), name), "");
}

}  // namespace

Shape commandLineShape() {
    Options options;
    CLI::App app(kAbout, "trctl");
    define(app, options);
    return shapeOf(app);
}

std::optional<Options> parseOptions(int argc, const char* const* argv, int& status) {
    Options options;
    CLI::App app(kAbout, "trctl");
    define(app, options);
    try {
        app.parse(argc, argv);
        options.command = app.get_subcommands().front()->get_name();
        const std::string fault = faultOf(options);
        if (!fault.empty())
            status = rejectCall(fault, options.command);
        else if (options.command == "help")
            status = printHelp(app, options.helpOn);
        else
            return options;
    } catch (const CLI::CallForHelp&) {
        status = print(app.help());
    } catch (const CLI::CallForVersion& version) {
        status = print(version.what() + std::string("\n"));
    } catch (const CLI::ParseError& reason) {
        const UsageError error = usageErrorOf(app, reason);
        status = rejectCall(complaintOf(error, shapeOf(app)), error.command);
    }
    return std::nullopt;
}

}  // namespace trctl
