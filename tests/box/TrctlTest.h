#pragma once

#include "tests/box/DaemonTest.h"

#include <string>
#include <vector>

/// The real trctl, run against the unmodified daemon.
class TrctlTest : public DaemonTest {
  protected:
    using Words = std::vector<std::string>;

    struct Result {
        int status = -1;  ///< -1 when it did not end by itself
        std::string output;
        std::string errors;
    };

    /// Starts it with its standard output in a separate file.
    static std::unique_ptr<Child> begin(const Words& arguments);
    static Result end(Child& trctl);
    static Result run(const Words& arguments);
    /// A script of bash, in which $TRCTL is the program.
    static Result bash(const std::string& script);
    static std::string printed();

    Words listed() { return client().listAddresses().list; }
};
