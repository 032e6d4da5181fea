#include "cwmp/Uci.h"

#include "cwmp/Log.h"
#include "cwmp/Program.h"

namespace cwmp {

namespace {

constexpr char kPackage[] = "easycwmp";
// Putting things back has to be possible after a command has used up its time.
constexpr std::chrono::milliseconds kTimeToRevert{2000};

Ended runUci(const std::string& action, std::vector<std::string> arguments,
             const Deadline& deadline) {
    arguments.insert(arguments.begin(), {"/usr/bin/uci", "-q", action});
    Ended ended = runProgram(arguments, deadline);
    // Not the arguments: there are passwords among them.
    if (!ended.isGood()) warn("uci " + action + " failed: " + reasonOf(ended));
    return ended;
}

}  // namespace

std::optional<UciOptions> UciProgram::show() {
    const Ended ended = runUci("show", {kPackage}, deadline_);
    if (!ended.isGood()) return std::nullopt;
    UciOptions options = parseUciShow(ended.output);
    // The client does not run without; an empty answer must not look like nothing being watched.
    if (options.count("@acs[0]") != 0) return options;
    warn("uci show prints no settings of the client");
    return std::nullopt;
}

bool UciProgram::change(const char* action, const std::string& option, const std::string& value) {
    // An argument ends at a NUL.
    if (value.find('\0') != std::string::npos) return false;
    return runUci(action, {std::string(kPackage) + '.' + option + '=' + value}, deadline_).isGood();
}

bool UciProgram::addSection(const std::string& type) {
    return runUci("add", {kPackage, type}, deadline_).isGood();
}

bool UciProgram::commit() {
    return runUci("commit", {kPackage}, deadline_).isGood();
}

void UciProgram::revert() {
    runUci("revert", {kPackage}, Deadline(kTimeToRevert));
}

}  // namespace cwmp
