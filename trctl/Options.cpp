#include "trctl/Options.h"

#include "trctl/Output.h"
#include "trctl/Plot.h"
#include "trctl/UsageError.h"

#include <CLI/CLI.hpp>

#include <set>
#include <type_traits>

namespace trctl {

namespace {

constexpr char kAbout[] =
    "Reads, writes and watches the TR-069 parameters that kelm-trd serves on D-Bus.";

constexpr char kFooter[] =
    "A PATH is a parameter (Device.DeviceInfo.UpTime), an object with its point for everything\n"
    "beneath it (Device.IP.), or a shell pattern in quotes ('**.Stats.Bytes*'): * ? [...] stay\n"
    "within a level, ** crosses levels. Control characters are escaped.\n"
    "\n"
    "Exit status: 0; 1 refused, not found or different; 2 a wrong call; 3 no bus or no daemon.\n"
    "\n"
    "Examples:\n"
    "  trctl get Device.DeviceInfo.\n"
    "  trctl set Device.Services.STBService.1.X_Kelm.Config.SyslogHost 10.0.0.9\n"
    "  trctl watch Device.IP. --interval 5\n"
    "  trctl help COMMAND";

constexpr char kGetExamples[] =
    "Examples:\n"
    "  trctl get Device.DeviceInfo.UpTime\n"
    "  trctl get Device.IP. '**.Stats.Bytes*'\n"
    "  trctl get --json Device. >saved.json\n"
    "  trctl get --value Device.DeviceInfo.UpTime";
constexpr char kSetExamples[] =
    "The daemon does not report whether it took a value, so it is read back. Nothing is written\n"
    "unless all parameters exist and are writable. - reads standard input, without a line end at\n"
    "its end; PATH=- writes a dash.\n"
    "\n"
    "Examples:\n"
    "  trctl set Device.A=1 Device.B=2\n"
    "  trctl set Device.Some.Text - <file\n"
    "  trctl set Device.Services.STBService.1.X_Kelm.Config.SyslogHost 10.0.0.9\n"
    "  trctl set Device.Services.STBService.1.X_Kelm.Config.SyslogHost ''\n"
    "  trctl set Device.Some.Text -- --starts-with-dashes";
constexpr char kRestoreExamples[] =
    "Writes the saved values of FILE that differ, where the daemon takes them; - is standard "
    "input.\n"
    "Prints them as diff does. What it leaves alone is counted on standard error: read-only\n"
    "parameters that differ, parameters that no longer exist, masked and garbled values.\n"
    "Exit status: 0 all is as saved, 1 a value did not take, 2 FILE cannot be used.\n"
    "\n"
    "Examples:\n"
    "  trctl restore saved.json --dry-run\n"
    "  trctl restore saved.json 'Device.Services.**.Config.*'";
constexpr char kListExamples[] =
    "Examples:\n"
    "  trctl list\n"
    "  trctl list Device.IP. --parameters\n"
    "  trctl list --level Device.\n"
    "  trctl list --level '**.Stats.'\n"
    "  trctl list --long Device.DeviceInfo.";
constexpr char kTreeExamples[] =
    "Examples:\n"
    "  trctl tree Device.IP.\n"
    "  trctl tree Device. --depth 2\n"
    "  trctl tree '**.Status' --ascii";
constexpr char kInfoExamples[] =
    "Prints kind, type, value, writable, forced inform, source, unit, meaning, and whether the "
    "CWMP\n"
    "client watches it.\n"
    "\n"
    "Examples:\n"
    "  trctl info Device.DeviceInfo.UpTime\n"
    "  trctl info 'Device.DeviceInfo.*Version'";
constexpr char kWatchExamples[] =
    "Reads the parameters at an interval until Ctrl-C, as the daemon has no signal for changes.\n"
    "\n"
    "Examples:\n"
    "  trctl watch\n"
    "  trctl watch --no-clocks --except Device.DeviceInfo.DeviceLog\n"
    "  trctl watch Device.IP. --rate --interval 5\n"
    "  trctl watch --once Device.IP.Interface.1.Status\n"
    "  trctl watch --plot Device.DeviceInfo.MemoryStatus.Free";
constexpr char kWaitExamples[] =
    "With PATH=VALUE it waits until this parameter has this value; white space at the value's end\n"
    "does not count. Exit status: 0 it is so, 1 not in time, 3 no daemon in time.\n"
    "\n"
    "Examples:\n"
    "  trctl wait && trctl tree\n"
    "  trctl wait Device.IP.Interface.1.Status=Up --timeout 5";
constexpr char kDiffExamples[] =
    "FILE is saved output of `trctl get --json`; - is standard input. Lines with - are the "
    "file's,\n"
    "with + the daemon's. Without PATH it compares the part of the tree that was saved.\n"
    "Exit status: 0 the same, 1 different, 2 FILE cannot be used.\n"
    "\n"
    "Examples:\n"
    "  trctl diff saved.json\n"
    "  trctl diff saved.json 'Device.Services.**.Config.*'";
constexpr char kChangesExamples[] =
    "Prints the watched parameters that the latest cycle changed, as the CWMP client gets them.\n"
    "The client drops a line that is not valid JSON; trctl marks it and returns status 1.\n"
    "\n"
    "Examples:\n"
    "  trctl changes";
constexpr char kHelpExamples[] =
    "Examples:\n"
    "  trctl help\n"
    "  trctl help watch";
constexpr char kReportExamples[] =
    "The page needs no network and masks passphrases and passwords. FILE ends in .html; - is\n"
    "standard output; the default name contains the time.\n"
    "\n"
    "Examples:\n"
    "  trctl report box.html\n"
    "  trctl report box.html --seconds 60 Device.IP.\n"
    "  trctl report box.html --snapshot kelm-snapshot-stb-20261121T195638Z.tar.gz";

/// One command of the program, whose positional arguments and options the caller adds.
CLI::App* add(CLI::App& app, const char* name, const char* about, const char* footer) {
    CLI::App* command = app.add_subcommand(name, about);
    command->footer(footer);
    command->fallthrough();
    return command;
}

// The library's own checks print their type.
template <typename Number>
CLI::Validator between(Number low, Number high) {
    const auto check = [low, high](std::string& text) {
        Number number = 0;
        const bool isIn =
            CLI::detail::lexical_cast(text, number) && number >= low && number <= high;
        const std::string kind = std::is_integral_v<Number> ? "whole number" : "number";
        return isIn ? ""
                    : "not a " + kind + " from " + numberText(low) + " to " + numberText(high) +
                          ": `" + text + '`';
    };
    return {check, ""};
}

CLI::Option* addCount(CLI::App* command, const char* name, const char* unit, unsigned& count,
                      unsigned high, const char* about) {
    return command->add_option(name, count, about)->check(between(1U, high))->type_name(unit);
}

CLI::Option* addSeconds(CLI::App* command, const char* name, double& seconds, double low,
                        const char* about) {
    constexpr double kDay = 86'400;
    return command
        ->add_option(name, seconds,
                     about + (" (" + numberText(low)) + " to " + numberText(kDay) + ", default " +
                         numberText(seconds) + ')')
        ->check(between(low, kDay))
        ->type_name("SECONDS");
}

CLI::Option* addPaths(CLI::App* command, Options& options, const char* about) {
    return command->add_option("PATH", options.paths, about)->type_name("");
}

void addWide(CLI::App* command, Options& options) {
    command->add_flag("--wide", options.wide, "Cut nothing to fit the terminal");
}

void addReading(CLI::App& app, Options& options) {
    CLI::App* get = add(app, "get", "Print values, as `address = value`", kGetExamples);
    addPaths(get, options, "What to print")->required();
    CLI::Option* json = get->add_flag("--json", options.json, "As one JSON object");
    CLI::Option* values =
        get->add_flag("--value", options.valueOnly, "Values alone, not escaped, one a line")
            ->excludes(json);
    get->add_flag("-0", options.endWithNul, "End each of these with a NUL instead")->needs(values);
    addWide(get, options);

    CLI::App* list = add(app, "list", "Print addresses, objects too", kListExamples);
    addPaths(list, options, "What to list; all of it otherwise");
    list->add_flag("--parameters", options.parametersOnly, "Without the objects");
    list->add_flag("--level", options.level, "Only the level right beneath PATH");
    list->add_flag("--long", options.isLong,
                   "With flags (w writable, i in every Inform), type and value");
    list->add_flag("--json", options.json, "As a JSON array");
    addWide(list, options);

    CLI::App* tree =
        add(app, "tree", "Draw the tree, with values beside the leaves", kTreeExamples);
    addPaths(tree, options, "What to draw; all of it otherwise");
    tree->add_flag("--ascii", options.ascii, "With ASCII strokes in a UTF-8 locale too");
    addCount(tree, "--depth", "LEVELS", options.depth, 10'000,
             "Draw this many levels beneath PATH");
    tree->add_flag("--json", options.json, "As JSON objects in objects");
    addWide(tree, options);

    CLI::App* info = add(app, "info", "Print all that is known about parameters", kInfoExamples);
    addPaths(info, options, "Parameters or objects")->required();
    info->add_flag("--json", options.json, "As one JSON object a line");
    addWide(info, options);
}

// The words of `set`: a path and a value, or PATH=VALUE each. Throws CLI::ParseError.
void takeAssignments(Options& options, bool hasValue) {
    const auto hasSign = [](const std::string& word) {
        return word.find('=') != std::string::npos;
    };
    if (!hasSign(options.parameter) && hasValue && options.more.empty()) {
        options.assignments = {{options.parameter, options.value}};
        options.valueFromInput = options.value == "-";
        return;
    }
    std::vector<std::string> words = {options.parameter};
    if (hasValue) words.push_back(options.value);
    words.insert(words.end(), options.more.begin(), options.more.end());
    std::set<std::string> paths;
    for (const std::string& word : words) {
        if (!hasSign(word))
            throw CLI::ValidationError(word, "no value; give PATH VALUE or PATH=VALUE");
        const std::size_t sign = word.find('=');
        options.assignments.push_back({word.substr(0, sign), word.substr(sign + 1)});
        if (!paths.insert(options.assignments.back().path).second)
            throw CLI::ValidationError("set", options.assignments.back().path + " is there twice");
    }
}

void addWriting(CLI::App& app, Options& options) {
    CLI::App* set = add(app, "set", "Write parameters, and read them back", kSetExamples);
    set->add_option("PATH", options.parameter, "The parameter, or PATH=VALUE")
        ->required()
        ->type_name("");
    CLI::Option* value =
        set->add_option("VALUE", options.value, "What to write; - reads standard input")
            ->type_name("");
    set->add_option("PATH=VALUE", options.more, "More of them")->type_name("");
    addWide(set, options);
    set->callback([&options, value] { takeAssignments(options, value->count() != 0); });

    CLI::App* restore = add(app, "restore", "Write a saved `get --json` back", kRestoreExamples);
    restore->add_option("FILE", options.file, "The saved values")->required()->type_name("");
    addPaths(restore, options, "What to write back; all of it otherwise");
    restore->add_flag("--dry-run", options.dryRun, "Print what it would write, write nothing");
    addWide(restore, options);
}

void addWaiting(CLI::App& app, Options& options) {
    CLI::App* watch = add(app, "watch", "Print changes as they happen", kWatchExamples);
    addPaths(watch, options, "What to watch; all of it otherwise");
    addSeconds(watch, "--interval", options.intervalSeconds, 0.05, "Time between two reads");
    watch->add_option("--except", options.except, "What to leave out; may be repeated")
        ->type_name("PATH")
        ->allow_extra_args(false);
    watch->add_flag("--no-clocks", options.noClocks,
                    "Leave out UpTime, LastChange and ResetTime, which only count time");
    watch->add_flag("--rate", options.rate, "With the growth of counters per second");
    addCount(watch, "--count", "N", options.count, 1'000'000, "End after so many changes");
    watch->add_flag("--once", options.once, "End after the first read that finds a change");
    watch->add_flag("--json", options.json, "As one JSON object a line");
    watch->add_flag("--plot", options.plot,
                    "Draw one numeric parameter as a moving line; needs a terminal");
    watch->add_flag("--ascii", options.ascii, "Draw with ASCII in a UTF-8 locale too");

    CLI::App* wait =
        add(app, "wait", "Wait for the end of the first cycle, or for a value", kWaitExamples);
    wait->add_option("PATH=VALUE", options.paths, "The parameter and the value that it shall have")
        ->expected(0, 1)
        ->type_name("");
    addSeconds(wait, "--timeout", options.timeoutSeconds, 0, "Time to wait for it, in all");
}

void addComparing(CLI::App& app, Options& options) {
    CLI::App* diff = add(app, "diff", "Compare with a saved `get --json`", kDiffExamples);
    diff->add_option("FILE", options.file, "The saved values")->required()->type_name("");
    addPaths(diff, options, "What to compare; what was saved otherwise");
    diff->add_flag("--json", options.json, "As a JSON array");
    addWide(diff, options);

    CLI::App* changes =
        add(app, "changes", "Print the pending change lines, checked", kChangesExamples);
    changes->add_flag("--json", options.json, "As a JSON array");
}

void addReport(CLI::App& app, Options& options) {
    CLI::App* report = add(app, "report", "Write one HTML page of the box", kReportExamples);
    report
        ->add_option("FILE PATH", options.paths, "The page, and what to show; all of it otherwise")
        ->type_name("");
    CLI::Option* seconds =
        addSeconds(report, "--seconds", options.watchSeconds, 0, "How long to watch for changes");
    report->add_option("--snapshot", options.snapshot, "Read kelm-trd-snapshot's archive instead")
        ->type_name("ARCHIVE")
        ->excludes(seconds);
}

void addHelp(CLI::App& app, Options& options) {
    CLI::App* help = add(app, "help", "Print this help, or that of a command", kHelpExamples);
    help->add_option("COMMAND", options.helpOn, "The command")->type_name("");
}

void addColor(CLI::App& app, Options& options) {
    constexpr const char* kModes[] = {"auto", "always", "never"};
    const auto numberOf = [kModes](const std::string& word) {
        return std::find(std::begin(kModes), std::end(kModes), word) - std::begin(kModes);
    };
    const auto check = [numberOf, kModes](std::string& word) -> std::string {
        if (numberOf(word) < std::end(kModes) - std::begin(kModes)) return {};
        return "not auto, always or never: `" + word + '`';
    };
    app.add_option_function<std::string>(
           "--color",
           [&options, numberOf](const std::string& word) {
               options.color = static_cast<ColorMode>(numberOf(word));
           },
           "auto: on a terminal, unless NO_COLOR is set")
        ->check(CLI::Validator(check, ""))
        ->type_name("auto|always|never");
}

void addCommon(CLI::App& app, Options& options) {
    app.add_option("--bus", options.bus,
                   "The bus; else DBUS_SESSION_BUS_ADDRESS, /etc/default/kelm-trd, kelm-trd-bus")
        ->type_name("ADDRESS");
    addColor(app, options);
    addSeconds(&app, "--timeout", options.timeoutSeconds, 0.1,
               "Time for each call; for wait, in all");
    app.add_flag("--quiet,-q", options.quiet, "Nothing on standard error but wrong calls");
    app.set_version_flag("--version,-V", "trctl " KELM_VERSION, "Print the version");
    app.set_help_flag("--help,-h", "Print this help");
    app.footer(kFooter);
    app.require_subcommand(1);
}

void define(CLI::App& app, Options& options) {
    addCommon(app, options);
    addReading(app, options);
    addWriting(app, options);
    addWaiting(app, options);
    addComparing(app, options);
    addReport(app, options);
    addHelp(app, options);
}

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
