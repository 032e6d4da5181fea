#include "tests/support/HostBoxTest.h"

#include "tests/support/Box.h"

#include <filesystem>

#include <stdlib.h>

namespace fs = std::filesystem;

const std::string HostBoxTest::kBox = KELM_BOX_FOLDER "/box";
const std::string HostBoxTest::kTestInBox = KELM_BOX_FOLDER "/test-in-box";

HostBoxTest::HostBoxTest() {
    std::string name = fs::temp_directory_path() / "box_test.XXXXXX";
    folder_ = mkdtemp(name.data());
}

HostBoxTest::~HostBoxTest() {
    fs::remove_all(folder_);
}

void HostBoxTest::SetUp() {
    const Result boot = run({kBox, "--", "true"});
    if (boot.end.code == kRefused) GTEST_SKIP() << boot.output;
    ASSERT_EQ(boot.end, ExitStatus{}) << boot.output;
}

std::vector<std::string> HostBoxTest::withoutTerminal(std::vector<std::string> command) {
    command.insert(command.begin(), {"sh", "-c", R"(exec "$@" </dev/null)", "sh"});
    return command;
}

HostBoxTest::Result HostBoxTest::run(const std::vector<std::string>& command,
                                     const Child::Environment& environment) {
    const std::string file = folder_ + "/output" + std::to_string(++runs_);
    Child child(withoutTerminal(command), file, environment);
    const auto end = child.waitForEnd(std::chrono::minutes(2));
    return {end.value_or(ExitStatus{-1, 0}), box::readFile(file)};
}

HostBoxTest::Result HostBoxTest::runInBox(const std::string& script,
                                          const std::vector<std::string>& options) {
    std::vector<std::string> command{kBox};
    command.insert(command.end(), options.begin(), options.end());
    command.insert(command.end(), {"--", "sh", "-c", script});
    return run(command);
}

std::string HostBoxTest::inBox(const std::string& script, const std::vector<std::string>& options) {
    std::string output = runInBox(script, options).output;
    if (!output.empty() && output.back() == '\n') output.pop_back();
    return output;
}
