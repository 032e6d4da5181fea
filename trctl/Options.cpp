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

// As --help prints it without a command or behind one; the app would print that of `help` itself.
int printHelp(const CLI::App& app, const std::string& name) {
    const auto mode = CLI::AppFormatMode::Normal;
    if (name.empty()) return print(app.get_formatter()->make_help(&app, app.get_name(), mode));
    const auto commands = app.get_subcommands(nullptr);
    const auto command = std::find_if(commands.begin(), commands.end(),
                                      [&](const CLI::App* one) { return one->get_name() == name; });
    if (command != commands.end()) return print((*command)->help(app.get_name()));
    return rejectCall(unknownCommand(app, name), "");
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
    } catch (const CLI::ParseError& error) {
        const auto commands = app.get_subcommands();
        status = rejectCall(complaintOf(app, error),
                            commands.empty() ? "" : commands.front()->get_name());
    }
    return std::nullopt;
}

}  // namespace trctl
