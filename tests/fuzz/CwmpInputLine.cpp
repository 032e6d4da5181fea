#include "tests/unit/cwmp/Fakes.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <unistd.h>

namespace {

FakeLife& life() {
    static FakeLife& one = [&]() -> FakeLife& {
        setenv("KELM_LOG_LEVEL", "ERROR", 1);  // a line of the log for each bad one takes long
        auto& made = *new FakeLife("/tmp/kelm-fuzz-rows-" + std::to_string(getpid()));
        made.daemon.entries = {{"Device.A.Host", {"a\x01", true, true}}, {"Device.B", {"5"}}};
        made.uci.options["@notifications[0].active"] = {"Device.A."};
        return made;
    }();
    return one;
}

}  // namespace

// The lines of the CWMP client. Whatever comes, each answer is one line of JSON, and the prompt
// follows the end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string line;
    life().answers.clear();
    for (std::size_t i = 0; i <= size; ++i) {
        if (i < size && data[i] != '\n') {
            line += static_cast<char>(data[i]);
            continue;
        }
        life().session.take(line);
        line.clear();
    }
    life().session.take(R"({"command":"end"})");
    if (life().answers.empty() || life().answers.back() != "easycwmp>") std::abort();
    for (const std::string& answer : life().answers)
        if (answer != "easycwmp>" && !cwmp::parseLine(answer)) std::abort();
    return 0;
}
