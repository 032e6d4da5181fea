#pragma once

#include "tests/support/Child.h"

#include <string>
#include <vector>

#include <sys/types.h>

/// A program that a test runs on its own terminal, as a person would. Killed and reaped with
/// the object.
class TerminalChild {
  public:
    TerminalChild(const std::vector<std::string>& command, unsigned short columns,
                  unsigned short rows, const Child::Environment& environment = {});
    ~TerminalChild();
    TerminalChild(const TerminalChild&) = delete;
    TerminalChild& operator=(const TerminalChild&) = delete;

    /// Types on the keyboard; "\x03" is Ctrl-C.
    void type(const std::string& keys) const;
    void resize(unsigned short columns, unsigned short rows) const;
    /// Everything that was written to the terminal so far.
    const std::string& screen();
    /// False when it did not show up in time, from that place of what was written on.
    bool waitForText(const std::string& text, std::size_t from = 0);
    /// Nothing when it still runs at the deadline.
    std::optional<ExitStatus> waitForEnd();

  private:
    pid_t pid_ = -1;
    int terminal_ = -1;  ///< the test's end, owned
    std::string screen_;
    std::optional<ExitStatus> end_;
};
