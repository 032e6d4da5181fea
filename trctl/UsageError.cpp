#include "trctl/UsageError.h"

#include "trctl/Nearest.h"
#include "trctl/Options.h"
#include "trctl/Paths.h"
#include "trctl/Pattern.h"
#include "trctl/Rates.h"

#include <algorithm>

namespace trctl {

namespace {

using Words = std::vector<std::string>;

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

// Those of the command, then those of every one.
Words optionsOf(const Shape& shape, const std::string& command) {
    Words names;
    for (const CommandShape& one : shape.commands)
        if (one.name == command)
            for (const OptionShape& option : one.options) names.push_back(option.name);
    for (const OptionShape& option : shape.options) names.push_back(option.name);
    return names;
}

std::string unknownOption(const Shape& shape, const std::string& command, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    const std::string complaint = "there is no option `" + name + '`';
    const std::string question = didYouMean(name, optionsOf(shape, command));
    if (!question.empty() || command != "set") return complaint + question;
    return complaint + "; a value that begins with a dash stands behind --: trctl set PATH -- " +
           word;
}

// The first word that nothing took, if that is why parsing ended.
std::string complaintOfRest(const UsageError& error, const Shape& shape) {
    const Words& rest = error.rest;
    const auto option = std::find_if(rest.begin(), rest.end(), [](const std::string& word) {
        return word.size() > 1 && word.front() == '-';
    });
    if (error.command.empty())
        return startsWith(rest.front(), "-") ? unknownOption(shape, "", rest.front())
                                             : unknownCommand(shape, rest.front());
    if (option != rest.end()) return unknownOption(shape, error.command, *option);
    return '`' + error.command + "` takes no further argument: `" + rest.front() + '`';
}

// What the library says ahead of \p end; empty when it says something else.
std::string ahead(const std::string& text, const std::string& end) {
    const std::size_t at = text.find(end);
    return at == std::string::npos ? "" : text.substr(0, at);
}

std::string lastWord(const std::string& text) {
    return text.substr(text.rfind(' ') + 1);
}

std::string complaintOfMismatch(const std::string& text) {
    const std::string name = ahead(text, ":");
    return text.find("missing") == std::string::npos ? name + " is given more than once"
                                                     : name + " needs a value";
}

std::string complaintOfConversion(const std::string& text) {
    return ahead(text.substr(text.find("--")), " = ") + " takes no value";
}

std::string complaintOfExclusion(const std::string& text) {
    return ahead(text, " excludes ") + " and " + lastWord(text) + " do not go together";
}

std::string complaintOfRequirement(const std::string& text) {
    return ahead(text, " requires ") + " needs " + lastWord(text);
}

struct Wording {
    const char* kind;
    std::string (*complaintOf)(const std::string& text);
};

constexpr Wording kWordings[] = {
    {"ArgumentMismatch", complaintOfMismatch},
    {"ConversionError", complaintOfConversion},
    {"ExcludesError", complaintOfExclusion},
    {"RequiresError", complaintOfRequirement},
    {"ValidationError", [](const std::string& text) { return text; }},
};

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
    const bool isOne = !isObject(path) && !Pattern::isPattern(path);
    return isOne ? "" : path + " is not one parameter";
}

}  // namespace

std::string faultOf(const Options& options) {
    if (options.command == "watch") return faultOfWatch(options);
    return options.command == "wait" ? faultOfWait(options) : "";
}

std::string unknownCommand(const Shape& shape, const std::string& word) {
    Words names;
    for (const CommandShape& command : shape.commands) names.push_back(command.name);
    return "there is no command `" + word + '`' + didYouMean(word, names);
}

std::string complaintOf(const UsageError& error, const Shape& shape) {
    for (const Wording& wording : kWordings)
        if (error.kind == wording.kind) return wording.complaintOf(error.text);
    if (!error.rest.empty()) return complaintOfRest(error, shape);
    if (error.command.empty()) return "a command is missing";
    return '`' + error.command + "` needs " + ahead(error.text, " is required");
}

}  // namespace trctl
