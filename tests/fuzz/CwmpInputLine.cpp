#include "tests/fuzz/Fuzz.h"
#include "tests/support/TempFolder.h"
#include "tests/unit/cwmp/Fakes.h"

#include <cstdlib>
#include <sstream>
#include <string>

namespace {

FakeLife& life() {
    static FakeLife& one = [&]() -> FakeLife& {
        setenv("KELM_LOG_LEVEL", "ERROR", 1);  // a line of the log for each bad one takes long
        static const TempFolder folder;
        auto& made = *new FakeLife(folder.path("rows"));
        made.daemon.entries = {{"Device.A.Host", {"a\x01", true, true}}, {"Device.B", {"5"}}};
        made.uci.options["@notifications[0].active"] = {"Device.A."};
        return made;
    }();
    return one;
}

}  // namespace

// The lines of the CWMP client. Whatever comes, each answer is one line of JSON, and the prompt
// follows the end.
void tryInput(const std::string& input) {
    life().answers.clear();
    std::istringstream lines(input + '\n');
    for (std::string line; std::getline(lines, line);) life().session.take(line);
    life().session.take(R"({"command":"end"})");
    require(!life().answers.empty() && life().answers.back() == "easycwmp>");
    for (const std::string& answer : life().answers)
        require(answer == "easycwmp>" || cwmp::parseLine(answer));
}
