#include "trctl/CommandLine.h"

#include "trctl/HelpTexts.h"
#include "trctl/Options.h"
#include "trctl/Plot.h"

#include <CLI/CLI.hpp>

#include <set>
#include <type_traits>

namespace trctl {

namespace {

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

void addGet(CLI::App& app, Options& options) {
    CLI::App* get = add(app, "get", "Print values, as `address = value`", kGetExamples);
    addPaths(get, options, "What to print")->required();
    CLI::Option* json = get->add_flag("--json", options.json, "As one JSON object");
    CLI::Option* values =
        get->add_flag("--value", options.valueOnly, "Values alone, not escaped, one a line")
            ->excludes(json);
    get->add_flag("-0", options.endWithNul, "End each of these with a NUL instead")->needs(values);
    addWide(get, options);
}

void addListing(CLI::App& app, Options& options) {
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

void addSet(CLI::App& app, Options& options) {
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
}

void addRestore(CLI::App& app, Options& options) {
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

}  // namespace

void define(CLI::App& app, Options& options) {
    addCommon(app, options);
    addGet(app, options);
    addListing(app, options);
    addSet(app, options);
    addRestore(app, options);
    addWaiting(app, options);
    addComparing(app, options);
    addReport(app, options);
    addHelp(app, options);
}

}  // namespace trctl
