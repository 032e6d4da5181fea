#include "trctl/UsageError.h"

#include "trctl/Nearest.h"
#include "trctl/Options.h"
#include "trctl/Paths.h"
#include "trctl/Pattern.h"
#include "trctl/Rates.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace trctl {

namespace {

using Words = std::vector<std::string>;

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

const CLI::App* commandOf(const CLI::App& app) {
    const auto parsed = app.get_subcommands();
    return parsed.empty() ? nullptr : parsed.front();
}

Words optionsOf(const CLI::App& app) {
    Words names;
    for (const CLI::App* holder : {commandOf(app), &app}) {
        if (holder == nullptr) continue;
        for (const CLI::Option* option : holder->get_options())
            for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
    return names;
}

std::string unknownOption(const CLI::App& app, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    const std::string complaint = "there is no option `" + name + '`';
    const std::string question = didYouMean(name, optionsOf(app));
    const CLI::App* const command = commandOf(app);
    if (!question.empty() || command == nullptr || command->get_name() != "set")
        return complaint + question;
    return complaint + "; a value that begins with a dash stands behind --: trctl set PATH -- " +
           word;
}

// The first word that nothing took, if that is why parsing ended.
std::string complaintOfRest(const CLI::App& app, const Words& rest) {
    const auto option = std::find_if(rest.begin(), rest.end(), [](const std::string& word) {
        return word.size() > 1 && word.front() == '-';
    });
    const CLI::App* const command = commandOf(app);
    if (command == nullptr)
        return startsWith(rest.front(), "-") ? unknownOption(app, rest.front())
                                             : unknownCommand(app, rest.front());
    if (option != rest.end()) return unknownOption(app, *option);
    return '`' + command->get_name() + "` takes no further argument: `" + rest.front() + '`';
}

// What the library says ahead of \p end; empty when it says something else.
std::string ahead(const std::string& text, const std::string& end) {
    const std::size_t at = text.find(end);
    return at == std::string::npos ? "" : text.substr(0, at);
}

std::string complaintOfMismatch(const std::string& text) {
    const std::string name = ahead(text, ":");
    return text.find("missing") == std::string::npos ? name + " is given more than once"
                                                     : name + " needs a value";
}

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

std::string unknownCommand(const CLI::App& app, const std::string& word) {
    Words names;
    for (const CLI::App* command : app.get_subcommands(nullptr))
        names.push_back(command->get_name());
    return "there is no command `" + word + '`' + didYouMean(word, names);
}

std::string complaintOf(const CLI::App& app, const CLI::ParseError& error) {
    const std::string text = error.what();
    const CLI::App* const command = commandOf(app);
    const Words rest = app.remaining(true);
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        return complaintOfMismatch(text);
    if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr)
        return ahead(text.substr(text.find("--")), " = ") + " takes no value";
    if (dynamic_cast<const CLI::ExcludesError*>(&error) != nullptr)
        return ahead(text, " excludes ") + " and " + text.substr(text.rfind(' ') + 1) +
               " do not go together";
    if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr) return error.what();
    if (dynamic_cast<const CLI::RequiresError*>(&error) != nullptr)
        return ahead(text, " requires ") + " needs " + text.substr(text.rfind(' ') + 1);
    if (!rest.empty()) return complaintOfRest(app, rest);
    if (command == nullptr) return "a command is missing";
    return '`' + command->get_name() + "` needs " + ahead(text, " is required");
}

}  // namespace trctl
