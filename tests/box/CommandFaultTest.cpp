// Every command that the daemon runs, failing in every way that a command can.

#include "tests/box/FaultyLife.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Command {
    const char* name;
    bool isOfTheStart;      // run once, not in every cycle
    const char* parameter;  // the one it is the source of, when its figure stays the same
};

constexpr Command kCommands[] = {
    {"uci", false, "Device.DeviceInfo.ProvisioningCode"},
    {"ubus", false, nullptr},
    {"iw", false, "Device.Services.STBService.1.X_Kelm.WiFiStatus.SSID"},
    {"ps", false, nullptr},
    {"netstat", false,
     "Device.Services.STBService.1.Components.FrontEnd.1.IP.IGMP.ClientGroupNumberOfEntries"},
    {"chipid_tool", true, nullptr},
    {"sysctl", true, nullptr},
};

struct Failing {
    const char* name;   // what the commands do, as the end of a sentence
    const char* fault;  // for box::setFault; empty takes the command away
};

constexpr Failing kFailings[] = {
    {"IsMissing", ""},
    {"Fails", "exit 1"},
    {"IsSilent", "silent"},
    {"PrintsGarbage", "garbage"},
    {"PrintsTenMegabytes", "flood"},
    {"PrintsALineWithoutAnEnd", "line"},
    {"LeavesItsLastLineWithoutAnEnd", "noeol"},
    {"IsSlow", "slow 3"},
    {"HangsUntilItIsKilled", "hang"},
    {"ClosesItsOutputEarly", "closeearly 1"},
    {"LeavesAChildThatHoldsThePipe", "background 2"},
};

class CommandFaultTest : public FaultyLife, public ::testing::WithParamInterface<Failing> {
  protected:
    Fault faultsOfTheStart() override { return spoil(true); }
    Fault faults() override { return spoil(false); }

    const std::string fault_ = GetParam().fault;

  private:
    Fault spoil(bool ofTheStart) const {
        std::vector<Fault> all;
        for (const Command& command : kCommands) {
            if (command.isOfTheStart != ofTheStart) continue;
            box::clearCalls(command.name);
            all.push_back(fault_.empty()
                              ? faults::withoutFile(std::string("/usr/bin/") + command.name)
                              : faults::command(command.name, fault_));
        }
        return faults::all(all);
    }
};

// All commands fail in the same way in one life: each is met where the cycle comes to it.
TEST_P(CommandFaultTest, TheDaemonLivesOn) {
    // For the whole life: a command that has begun to hang still does when the fault is gone.
    const Fault watchdog =
        fault_ == "hang" ? faults::watchdog(std::chrono::milliseconds(100)) : nullptr;
    live();
    for (const Command& command : kCommands) {
        if (command.parameter != nullptr) expectSame(command.parameter);
        EXPECT_FALSE(box::calls(command.name).empty() && !command.isOfTheStart)
            << command.name << " was not met";
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandFaultTest, ::testing::ValuesIn(kFailings),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
