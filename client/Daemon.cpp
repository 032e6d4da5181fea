#include "client/Daemon.h"

namespace client {

namespace {

std::string answerTo(Daemon& daemon, Daemon::Question question, const std::string& address) {
    const auto flag = [](bool isSet) { return isSet ? "1" : "0"; };
    if (question == Daemon::Question::Value) return daemon.value(address);
    if (question == Daemon::Question::Writable) return flag(daemon.isWritable(address));
    return flag(daemon.isForcedInform(address));
}

}  // namespace

void Daemon::ask(Question question, const Addresses& addresses, const Answer& answer) {
    for (const std::string* address : addresses) {
        std::optional<std::string> text;
        try {
            text = answerTo(*this, question, *address);
        } catch (const Refused&) {
            text.reset();
        }
        answer(*address, std::move(text));
    }
}

}  // namespace client
