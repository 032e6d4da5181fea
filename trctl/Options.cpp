#include "trctl/Options.h"

#include "trctl/Output.h"
#include "trctl/Rates.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <map>

namespace trctl {

namespace {

constexpr char kAbout[] =
    "Reads, writes and watches the TR-069 parameters that kelm-trd serves on D-Bus.";

constexpr char kFooter[] =
    "A PATH is a parameter (Device.DeviceInfo.UpTime), an object with its point for everything\n"
    "beneath it (Device.IP.), or a shell pattern in quotes ('*.Stats.Bytes*'), in which * also\n"
    "matches points. Control characters are escaped.\n"
    "\n"
    "Exit status: 0; 1 refused, not found or different; 2 a wrong call; 3 no bus or no daemon.\n"
    "\n"
    "Examples:\n"
    "  trctl get Device.DeviceInfo.\n"
    "  trctl set Device.Services.STBService.1.X_Kelm.Config.SyslogHost 10.0.0.9\n"
    "  trctl watch Device.IP. --interval 5\n"
    "  trctl COMMAND --help";

constexpr char kGetExamples[] =
    "Examples:\n"
    "  trctl get Device.DeviceInfo.UpTime\n"
    "  trctl get Device.IP. '*.Stats.Bytes*'\n"
    "  trctl get --json Device. >saved.json";
constexpr char kSetExamples[] =
    "The daemon does not report whether it took a value, so it is read back.\n"
    "\n"
    "Examples:\n"
    "  trctl set Device.Services.STBService.1.X_Kelm.Config.SyslogHost 10.0.0.9\n"
    "  trctl set Device.Services.STBService.1.X_Kelm.Config.SyslogHost ''\n"
    "  trctl set Device.Some.Text -- --starts-with-dashes";
constexpr char kListExamples[] =
    "Examples:\n"
    "  trctl list\n"
    "  trctl list Device.IP. --parameters\n"
    "  trctl list --level Device.\n"
    "  trctl list --long Device.DeviceInfo.";
constexpr char kTreeExamples[] =
    "Examples:\n"
    "  trctl tree Device.IP.\n"
    "  trctl tree '*.Status' --ascii";
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
    "with + the daemon's. Exit status: 0 the same, 1 different, 2 FILE cannot be used.\n"
    "\n"
    "Examples:\n"
    "  trctl diff saved.json\n"
    "  trctl diff saved.json 'Device.Services.*.Config.*'";
constexpr char kChangesExamples[] =
    "Prints the watched parameters that the latest cycle changed, as the CWMP client gets them.\n"
    "The client drops a line that is not valid JSON; trctl marks it and returns status 1.\n"
    "\n"
    "Examples:\n"
    "  trctl changes";
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

CLI::Option* addPaths(CLI::App* command, Options& options, const char* about) {
    return command->add_option("PATH", options.paths, about)->type_name("");
}

void addReading(CLI::App& app, Options& options) {
    CLI::App* get = add(app, "get", "Print values, as `address = value`", kGetExamples);
    addPaths(get, options, "What to print")->required();
    get->add_flag("--json", options.json, "As one JSON object");

    CLI::App* list = add(app, "list", "Print addresses, objects too", kListExamples);
    addPaths(list, options, "What to list; all of it otherwise");
    list->add_flag("--parameters", options.parametersOnly, "Without the objects");
    list->add_flag("--level", options.level, "Only the level right beneath PATH");
    list->add_flag("--long", options.isLong,
                   "With flags (w writable, i in every Inform), type and value");

    CLI::App* tree =
        add(app, "tree", "Draw the tree, with values beside the leaves", kTreeExamples);
    addPaths(tree, options, "What to draw; all of it otherwise");
    tree->add_flag("--ascii", options.ascii, "With ASCII strokes in a UTF-8 locale too");

    CLI::App* info = add(app, "info", "Print all that is known about parameters", kInfoExamples);
    addPaths(info, options, "Parameters or objects")->required();
    info->add_flag("--json", options.json, "As one JSON object a line");
}

void addWriting(CLI::App& app, Options& options) {
    CLI::App* set = add(app, "set", "Write a parameter, and read it back", kSetExamples);
    set->add_option("PATH", options.parameter, "The parameter")->required()->type_name("");
    set->add_option("VALUE", options.value, "What to write")->required()->type_name("");
}

void addWaiting(CLI::App& app, Options& options) {
    CLI::App* watch = add(app, "watch", "Print changes as they happen", kWatchExamples);
    addPaths(watch, options, "What to watch; all of it otherwise");
    watch->add_option("--interval", options.intervalSeconds, "Seconds between two reads")
        ->check(CLI::Range(0.05, 86'400.0))
        ->type_name("SECONDS")
        ->capture_default_str();
    watch->add_option("--except", options.except, "What to leave out; may be repeated")
        ->type_name("PATH")
        ->allow_extra_args(false);
    watch->add_flag("--no-clocks", options.noClocks,
                    "Leave out UpTime, LastChange and ResetTime, which only count time");
    watch->add_flag("--rate", options.rate, "With the growth of counters per second");
    watch->add_option("--count", options.count, "End after so many changes")
        ->check(CLI::Range(1.0, 1e6))
        ->type_name("N");
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
    wait->add_option("--timeout", options.timeoutSeconds, "Seconds to wait for it")
        ->check(CLI::Range(0.0, 86'400.0))
        ->type_name("SECONDS")
        ->capture_default_str();
}

void addComparing(CLI::App& app, Options& options) {
    CLI::App* diff = add(app, "diff", "Compare with a saved `get --json`", kDiffExamples);
    diff->add_option("FILE", options.file, "The saved values")->required()->type_name("");
    addPaths(diff, options, "What to compare; all of it otherwise");

    add(app, "changes", "Print the pending change lines, checked", kChangesExamples);
}

void addReport(CLI::App& app, Options& options) {
    CLI::App* report = add(app, "report", "Write one HTML page of the box", kReportExamples);
    report
        ->add_option("FILE PATH", options.paths, "The page, and what to show; all of it otherwise")
        ->type_name("");
    CLI::Option* seconds =
        report->add_option("--seconds", options.watchSeconds, "How long to watch for changes")
            ->check(CLI::Range(0.0, 86'400.0))
            ->type_name("SECONDS")
            ->capture_default_str();
    report->add_option("--snapshot", options.snapshot, "Read kelm-trd-snapshot's archive instead")
        ->type_name("ARCHIVE")
        ->excludes(seconds);
}

void addCommon(CLI::App& app, Options& options) {
    const std::map<std::string, ColorMode> modes = {
        {"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}};
    app.add_option("--bus", options.bus, "The bus; DBUS_SESSION_BUS_ADDRESS otherwise")
        ->type_name("ADDRESS");
    app.add_option("--color", options.color,
                   "auto (on a terminal, unless NO_COLOR is set), always or never")
        ->type_name("WHEN")
        ->transform(CLI::CheckedTransformer(modes).description(""));
    app.set_version_flag("--version", "trctl " KELM_VERSION, "Print the version");
    app.set_help_flag("--help,-h", "Print this help");
    app.footer(kFooter);
    app.require_subcommand(1);
}

// Why the options of `watch` make no sense together; empty when they do.
const char* faultOfWatch(const Options& options) {
    const bool isSelective = options.noClocks || !options.except.empty();
    const bool hasEnd = options.once || options.count > 0;
    if (options.plot && (options.json || options.rate || isSelective || hasEnd))
        return "--plot draws one parameter until Ctrl-C; only --interval and --ascii go with it";
    if (options.ascii && !options.plot)
        return "--ascii is for --plot; changes are printed without strokes";
    if (options.once && options.count > 0)
        return "--once ends after one read, --count after N changes; give one of them";
    if (options.rate && options.once && options.intervalSeconds < Rates::kRefreshSeconds)
        return "--rate with --once needs an --interval of 5 or more: the daemon refreshes its "
               "counters every five seconds";
    return "";
}

std::string faultOfWait(const Options& options) {
    if (options.paths.empty()) return "";
    const std::string& awaited = options.paths.front();
    const std::string path = awaited.substr(0, awaited.find('='));
    if (path == awaited || path.empty()) return "'" + awaited + "' is not PATH=VALUE";
    const bool isOne = path.back() != '.' && path.find_first_of("*?[") == std::string::npos;
    return isOne ? "" : path + " is not one parameter";
}

// Why a call that parses makes no sense; empty when it does.
std::string faultOf(const Options& options) {
    if (options.command == "watch") return faultOfWatch(options);
    return options.command == "wait" ? faultOfWait(options) : "";
}

int wrongCall(const char* reason) {
    complain(reason);
    std::cerr << "Run with --help for more information.\n";
    return kUsage;
}

}  // namespace

std::optional<Options> parseOptions(int argc, const char* const* argv, int& status) {
    Options options;
    CLI::App app(kAbout, "trctl");
    addCommon(app, options);
    addReading(app, options);
    addWriting(app, options);
    addWaiting(app, options);
    addComparing(app, options);
    addReport(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            status = app.exit(error, std::cout, std::cerr);
            std::cout.flush();
            return std::nullopt;
        }
        status = wrongCall(error.what());
        return std::nullopt;
    }
    options.command = app.get_subcommands().front()->get_name();
    const std::string fault = faultOf(options);
    if (!fault.empty()) {
        status = wrongCall(fault.c_str());
        return std::nullopt;
    }
    return options;
}

}  // namespace trctl
