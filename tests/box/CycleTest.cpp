#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// Each provider is recognised by a command that it alone runs: sysctl and iw, netstat, ps.
class CycleTest : public DaemonTest {
  protected:
    static bool called(const char* command) { return box::waitForCalls(command); }
};

TEST_F(CycleTest, NetworkComesBeforeTheFrontEndAndThatBeforeDeviceInformation) {
    box::setFault("iw", "slow 1");
    box::setFault("netstat", "slow 1");
    startBus();
    launch();
    ASSERT_TRUE(called("iw"));
    EXPECT_TRUE(box::calls("netstat").empty());
    ASSERT_TRUE(called("netstat"));
    EXPECT_TRUE(box::calls("ps").empty());
    EXPECT_TRUE(called("ps"));
}

TEST_F(CycleTest, TheFrontEndIsInitialisedBeforeDeviceInformation) {
    box::setFault("sysctl", "slow 1");
    startBus();
    launch();
    ASSERT_TRUE(called("sysctl"));
    EXPECT_TRUE(box::calls("chipid_tool").empty());
    EXPECT_TRUE(called("chipid_tool"));
}

TEST_F(CycleTest, TheKernelsSettingsAreAskedForOnce) {
    start();
    waitForCycles(1);
    EXPECT_EQ(box::calls("sysctl").size(), 1U);
    EXPECT_GE(box::calls("netstat").size(), 2U);
}

}  // namespace
