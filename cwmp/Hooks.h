#pragma once

#include "cwmp/Faults.h"

#include <string>
#include <utility>
#include <vector>

namespace cwmp {

/// What the box itself has to do: programs in /etc/kelm-trd/cwmp, without a shell in between.
class Hooks {
  public:
    using Settings = std::vector<std::pair<std::string, std::string>>;

    Hooks() = default;
    virtual ~Hooks() = default;
    Hooks(const Hooks&) = delete;
    Hooks& operator=(const Hooks&) = delete;

    /// Waits for the hook of that name. None when it has done its work, else the code that its exit
    /// status stands for; RequestDenied without such a hook. The settings go into its environment.
    virtual FaultCode run(const std::string& name, const Settings& settings) = 0;
};

class HookPrograms : public Hooks {
  public:
    FaultCode run(const std::string& name, const Settings& settings) override;
};

/// Where a download is put: in a folder that only root can enter. Empty when that cannot be had.
std::string downloadTarget();

}  // namespace cwmp
