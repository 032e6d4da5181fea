#pragma once

#include "cwmp/Deadline.h"
#include "cwmp/UciText.h"

#include <optional>
#include <string>
#include <vector>

namespace cwmp {

/// The client's own configuration; the tests have one without a program. Package easycwmp only.
class Uci {
  public:
    Uci() = default;
    virtual ~Uci() = default;
    Uci(const Uci&) = delete;
    Uci& operator=(const Uci&) = delete;

    /// All options, staged ones included; nothing when they cannot be read.
    virtual std::optional<UciOptions> show() = 0;
    /// set and its like: stages \p option, such as "@acs[0].url", with the value.
    virtual bool change(const char* action, const std::string& option,
                        const std::string& value) = 0;
    /// Adds a section of this type at the end.
    virtual bool addSection(const std::string& type) = 0;
    virtual bool commit() = 0;
    /// Drops what is staged.
    virtual void revert() = 0;
};

/// /usr/bin/uci, one program per call: `uci show` reads all options at once.
class UciProgram : public Uci {
  public:
    /// Each call ends at the deadline, which the owner sets again for each command.
    explicit UciProgram(const Deadline& deadline) : deadline_(deadline) {}

    std::optional<UciOptions> show() override;
    bool change(const char* action, const std::string& option, const std::string& value) override;
    bool addSection(const std::string& type) override;
    bool commit() override;
    void revert() override;

  private:
    const Deadline& deadline_;
};

}  // namespace cwmp
