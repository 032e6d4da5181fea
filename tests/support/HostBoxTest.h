#pragma once

#include "tests/support/Child.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// A test that runs on the host and starts boxes itself, with its own folder. It is skipped, with
/// the box's reason, where no box can be made.
class HostBoxTest : public ::testing::Test {
  protected:
    struct Result {
        ExitStatus end;
        std::string output;  ///< standard output and standard error
    };

    static const std::string kBox;        ///< box/box
    static const std::string kTestInBox;  ///< box/test-in-box
    static constexpr int kRefused = 77;

    HostBoxTest();
    ~HostBoxTest() override;
    void SetUp() override;

    /// Never with a terminal: a box treats Ctrl-C differently then.
    static std::vector<std::string> withoutTerminal(std::vector<std::string> command);

    Result run(const std::vector<std::string>& command, const Child::Environment& environment = {});
    /// A shell script in a box with these options of box/box.
    Result runInBox(const std::string& script, const std::vector<std::string>& options = {});
    /// Its output without the last newline, as $(...) would have it.
    std::string inBox(const std::string& script, const std::vector<std::string>& options = {});

    const std::string& folder() const { return folder_; }

  private:
    std::string folder_;
    int runs_ = 0;
};
