#include "trctl/Completion.h"

#include "client/ShellWords.h"
#include "trctl/Connection.h"
#include "trctl/Options.h"
#include "trctl/Output.h"
#include "trctl/Paths.h"
#include "trctl/Text.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

namespace trctl {

namespace {

using Words = std::vector<std::string>;

// A person waits for it with a key pressed.
constexpr std::chrono::milliseconds kTimeToComplete{2'000};

bool startsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

bool names(const std::string& list, const char* name) {
    return list.find(name) != std::string::npos;
}

template <class Named>
const Named* find(const std::vector<Named>& all, const std::string& name) {
    const auto at = std::find_if(all.begin(), all.end(),
                                 [&](const Named& named) { return named.name == name; });
    return at == all.end() ? nullptr : &*at;
}

template <class Named>
void addNames(Words& words, const std::vector<Named>& all) {
    for (const Named& named : all)
        if (std::find(words.begin(), words.end(), named.name) == words.end())
            words.push_back(named.name);
}

bool isAssignment(const std::string& word) {
    const std::size_t equal = word.find('=');
    return equal != std::string::npos && equal > 0 && word.find_first_of("/-") > equal;
}

/// Goes through the words ahead of the one that is being typed.
class Reading {
  public:
    explicit Reading(const Shape& shape) : shape_(shape) {}

    void pass(const std::string& word) {
        if (awaiting_ != nullptr)
            take(*std::exchange(awaiting_, nullptr), word);
        else if (!isBehindDashes_ && word == "--")
            isBehindDashes_ = true;
        else if (!isBehindDashes_ && startsWith(word, "--"))
            passOption(word);
        else if (command_ == nullptr && !isUnknown_)
            isUnknown_ = (command_ = find(shape_.commands, word)) == nullptr;
        else if (isBehindDashes_ || !startsWith(word, "-"))
            arguments_.push_back(word);
    }

    Wanted wanted(const std::string& word) const {
        Wanted wanted;
        wanted.bus = bus_;
        wanted.start = word;
        const std::size_t equal = word.find('=');
        if (awaiting_ != nullptr)
            wantValue(wanted, *awaiting_, "");
        else if (!isBehindDashes_ && startsWith(word, "--") && equal != std::string::npos)
            wantValueOf(wanted, word.substr(0, equal));
        else if (!isBehindDashes_ && startsWith(word, "-"))
            wantOptions(wanted);
        else if (command_ != nullptr)
            wantArgument(wanted);
        else if (!isUnknown_)
            addNames(wanted.words, shape_.commands);
        return wanted;
    }

  private:
    const OptionShape* option(const std::string& name) const {
        const OptionShape* own = command_ == nullptr ? nullptr : find(command_->options, name);
        return own != nullptr ? own : find(shape_.options, name);
    }
    void take(const OptionShape& option, const std::string& value) {
        if (option.name == "--bus") bus_ = value;
    }
    void passOption(const std::string& word) {
        const std::size_t equal = word.find('=');
        const OptionShape* const known = option(word.substr(0, equal));
        if (known == nullptr || known->value.empty()) return;
        if (equal == std::string::npos)
            awaiting_ = known;
        else
            take(*known, word.substr(equal + 1));
    }

    static void wantValue(Wanted& wanted, const OptionShape& option, const std::string& ahead) {
        // A name of a file stands alone in the shell's own completion.
        wanted.files =
            ahead.empty() && (names(option.value, "FILE") || names(option.value, "ARCHIVE"));
        if (!names(option.value, "|")) return;
        for (std::size_t at = 0, end = 0; end != std::string::npos; at = end + 1) {
            end = option.value.find('|', at);
            wanted.words.push_back(ahead + option.value.substr(at, end - at));
        }
    }
    void wantValueOf(Wanted& wanted, const std::string& name) const {
        const OptionShape* const known = option(name);
        if (known != nullptr) wantValue(wanted, *known, name + '=');
    }
    void wantOptions(Wanted& wanted) const {
        if (command_ != nullptr) addNames(wanted.words, command_->options);
        addNames(wanted.words, shape_.options);
    }
    const ArgumentShape* argument() const {
        std::size_t left = arguments_.size();
        for (const ArgumentShape& argument : command_->arguments) {
            if (argument.isRepeated || left == 0) return &argument;
            --left;
        }
        return nullptr;
    }
    void wantArgument(Wanted& wanted) const {
        const ArgumentShape* const expected = argument();
        const bool isPath = expected != nullptr && names(expected->name, "PATH");
        const bool isSet = command_->name == "set";
        // Behind PATH=VALUE another one, behind PATH its value.
        const bool isAnother = isSet && !arguments_.empty();
        wanted.writableOnly = isSet;
        wanted.assigns = isAnother || (!isSet && isPath && names(expected->name, "PATH="));
        wanted.addresses =
            (isAnother ? names(arguments_.front(), "=") : isPath) && !names(wanted.start, "=");
        wanted.files = expected != nullptr && names(expected->name, "FILE");
        if (expected != nullptr && expected->name == "COMMAND")
            addNames(wanted.words, shape_.commands);
    }

    const Shape& shape_;
    const CommandShape* command_ = nullptr;
    const OptionShape* awaiting_ = nullptr;
    Words arguments_;
    std::string bus_;
    bool isBehindDashes_ = false;
    bool isUnknown_ = false;
};

// The flags of all in one flight; they are listed, so that the question adds none.
Addresses writableOf(client::Daemon& daemon, const Addresses& parameters) {
    client::Daemon::Addresses asked;
    for (const std::string& address : parameters) asked.push_back(&address);
    Addresses writable;
    daemon.ask(client::Daemon::Question::Writable, asked,
               [&](const std::string& address, const std::optional<std::string>& answer) {
                   if (answer == "1") writable.push_back(address);
               });
    return writable;
}

Addresses objectsOf(const std::string& start) {
    const std::size_t point = start.rfind('.');
    return point == std::string::npos ? Addresses{} : Addresses{start.substr(0, point + 1)};
}

Addresses addressesFor(const Wanted& wanted, bool descends) {
    try {
        Connection connection(wanted.bus, kTimeToComplete);
        connection.daemon().setTimeLeft(kTimeToComplete);
        return wantedAddresses(connection.daemon(), wanted, descends);
    } catch (const client::Unreachable&) {
        return {};
    } catch (const client::Refused&) {
        return {};
    }
}

}  // namespace

Wanted wantedAt(const Shape& shape, const Words& words) {
    const auto program = std::find_if_not(words.begin(), words.end(), isAssignment);
    if (words.end() - program < 2) return {};
    Reading reading(shape);
    std::for_each(program + 1, words.end() - 1,
                  [&](const std::string& word) { reading.pass(word); });
    return reading.wanted(words.back());
}

Addresses wantedAddresses(client::Daemon& daemon, const Wanted& wanted, bool descends) {
    Addresses all = wanted.writableOnly ? daemon.parameters() : daemon.addresses();
    const auto isOther = [&](const std::string& address) {
        return !startsWith(address, wanted.start) || escaped(address) != address;
    };
    all.erase(std::remove_if(all.begin(), all.end(), isOther), all.end());
    if (wanted.writableOnly) all = writableOf(daemon, all);
    Addresses level = nextLevel(all, objectsOf(wanted.start));
    while (descends && level.size() == 1 && isObject(level.front())) {
        Addresses beneath = nextLevel(all, level);
        if (beneath.empty()) break;
        level = std::move(beneath);
    }
    for (std::string& address : level)
        if (wanted.assigns && !isObject(address)) address += '=';
    return level;
}

int complete(const std::string& line) {
    const client::ShellWords typed = client::shellWords(line);
    const Wanted wanted = wantedAt(commandLineShape(), typed.words);
    Output out;
    for (const std::string& word : wanted.words)
        if (startsWith(word, wanted.start)) out.line(word);
    // bash closes the quote behind a lone candidate.
    if (wanted.addresses)
        for (const std::string& address : addressesFor(wanted, typed.isQuoted)) out.line(address);
    out.flush();
    return wanted.files ? kFilesToo : kDone;
}

}  // namespace trctl
