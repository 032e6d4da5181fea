// Every file that the daemon reads, failing in every way that a file can.

#include "tests/box/FaultyLife.h"
#include "tests/support/FaultyFiles.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

class FileFaultTest : public FaultyLife, public ::testing::WithParamInterface<FileFailing> {
  protected:
    Fault faultsOfTheStart() override { return spoilAll(true); }
    Fault faults() override { return spoilAll(false); }
    // Again and again, so that a file that changes is met in all its states.
    void underFaults() override {
        for (int i = 0; i < (GetParam().repeat == nullptr ? 3 : 50); ++i)
            EXPECT_TRUE(client().updateNotifTable().ok);
    }
    void afterFaults() override {
        box::clearCalls("ubus");
        EXPECT_TRUE(client().updateNotifTable().ok);
    }

  private:
    static Fault spoilAll(bool ofTheStart) {
        std::vector<Fault> all;
        for (const FaultyFile& file : faultyFiles())
            if (file.isOfTheStart == ofTheStart) all.push_back(spoil(file, GetParam()));
        return faults::all(all);
    }
};

// All files fail in the same way in one life; each is a matter of its own parameter.
TEST_P(FileFaultTest, TheDaemonLivesOn) {
    live();
    for (const FaultyFile& file : faultyFiles())
        if (file.parameter != nullptr) expectSame(file.parameter);
    EXPECT_FALSE(after("Device.DeviceInfo.UpTime").empty());
    EXPECT_FALSE(box::calls("ubus").empty()) << "the watched up time is no longer notified";
}

INSTANTIATE_TEST_SUITE_P(Files, FileFaultTest, ::testing::ValuesIn(fileFailings()),
                         [](const auto& row) { return std::string(row.param.name); });

/// The memory figures are read once, at the start. Without them the worker fails and the daemon
/// ends in order by itself, with status 0. Its supervisor starts another one.
class MemoryFileTest : public DaemonTest {
  protected:
    static Fault spoiled(const std::string& name) {
        for (const FileFailing& failing : fileFailings())
            if (name == failing.name) return spoil({"/proc/meminfo", true, nullptr}, failing);
        throw std::invalid_argument("no file can fail so: " + name);
    }
};

TEST_F(MemoryFileTest, WithoutFiguresTheDaemonEndsInOrder) {
    for (const char* name : {"IsEmpty", "IsAFifo", "CannotBeRead"}) {
        SCOPED_TRACE(name);
        const Fault fault = spoiled(name);
        startBus();
        launch();
        expectEnd({0, 0});
        EXPECT_TRUE(logHas("ERROR"));
        EXPECT_TRUE(logHas("basic_string::substr"));
    }
}

TEST_F(MemoryFileTest, OddFiguresAreLivedWith) {
    for (const char* name : {"HasNoFinalLineFeed", "IsBinary", "IsTenMegabytes"}) {
        SCOPED_TRACE(name);
        const Fault fault = spoiled(name);
        start();
        expectAnswers();
        expectOrderlyStop();
    }
}

}  // namespace
