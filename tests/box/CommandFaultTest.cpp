// Every command that the daemon runs, failing in every way that a command can.

#include "tests/box/FaultyLife.h"
#include "tests/support/Box.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <ostream>
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
    const char* fault;  // for box::setFault; null takes the command away
};

constexpr Failing kFailings[] = {
    {"IsMissing", nullptr},
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

struct Row {
    const Command* command;
    const Failing* failing;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.command->name << ' ' << row.failing->name;
}

std::vector<Row> rows() {
    std::vector<Row> all;
    for (const Failing& failing : kFailings)
        for (const Command& command : kCommands) all.push_back({&command, &failing});
    return all;
}

std::string nameOf(const ::testing::TestParamInfo<Row>& info) {
    std::string name = info.param.command->name;
    if (name == "chipid_tool") name = "chipId";
    return name + info.param.failing->name;
}

std::string pathOf(const Command& command) {
    return std::string("/usr/bin/") + command.name;
}

void spoil(const Command& command, const Failing& failing) {
    if (failing.fault != nullptr) return box::setFault(command.name, failing.fault);
    std::filesystem::rename(pathOf(command), pathOf(command) + ".away");
}

void restore(const Command& command, const Failing& failing) {
    if (failing.fault != nullptr) return box::setFault(command.name, "");
    std::filesystem::rename(pathOf(command) + ".away", pathOf(command));
}

void forEach(bool ofTheStart, const Failing& failing,
             void (*action)(const Command&, const Failing&)) {
    for (const Command& command : kCommands)
        if (command.isOfTheStart == ofTheStart) action(command, failing);
}

// All commands fail in the same way in one life: each is met where the cycle comes to it.
std::unique_ptr<FaultyLife> lifeWith(const Failing& failing) {
    FaultyLife::Script script;
    script.spoilStart = [&] { forEach(true, failing, spoil); };
    script.restoreStart = [&] { forEach(true, failing, restore); };
    script.spoil = [&](pid_t) {
        for (const Command& command : kCommands) box::clearCalls(command.name);
        forEach(false, failing, spoil);
    };
    script.restore = [&](pid_t) { forEach(false, failing, restore); };
    script.killHanging = failing.fault != nullptr && std::string(failing.fault) == "hang";
    return std::make_unique<FaultyLife>(script);
}

const FaultyLife& sharedLife(const Failing& failing) {
    static std::map<std::string, std::unique_ptr<FaultyLife>> lives;
    std::unique_ptr<FaultyLife>& life = lives[failing.name];
    if (!life) life = lifeWith(failing);
    return *life;
}

class CommandFaultTest : public ::testing::TestWithParam<Row> {};

TEST_P(CommandFaultTest, TheDaemonLivesOn) {
    const Command& command = *GetParam().command;
    const FaultyLife& life = sharedLife(*GetParam().failing);
    EXPECT_EQ(life.complaint(), "");
    if (command.parameter != nullptr)
        EXPECT_EQ(life.after(command.parameter), life.before(command.parameter));
    if (!command.isOfTheStart) EXPECT_FALSE(box::calls(command.name).empty()) << "was not met";
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandFaultTest, ::testing::ValuesIn(rows()), nameOf);

}  // namespace
