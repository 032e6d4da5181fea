#include "daemon/Worker.h"
#include "model/Storage.h"
#include "stb/src/common/NSTime.h"
#include "tests/support/Box.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

using TR::Address;

constexpr std::size_t kCountsPerCycle = 2;  // ps runs twice a cycle, in its last provider

class WorkerTest : public ::testing::Test {
  protected:
    bool has(const char* path) {
        const pthread_helper::scoped_lock lock(storage_.getStorageMutex());
        return storage_.hasAddress(Address(path));
    }
    static bool waitForCounts(std::size_t counts) { return box::waitForCalls("ps", counts); }

    TR::Storage storage_;
    TR::Worker worker_{&storage_};
};

TEST_F(WorkerTest, TheStepsFillTheTreeWithoutAThread) {
    worker_.createProviders();
    worker_.initProviders();
    EXPECT_TRUE(has("Device.Services.STBService.1.Enable"));
    EXPECT_TRUE(has("Device.DeviceInfo.SerialNumber"));
    EXPECT_FALSE(has("Device.IP.Interface.1.Name"));
    for (std::size_t cycles = 1; cycles <= 2; ++cycles) {
        worker_.runCycle();
        EXPECT_EQ(box::calls("ps").size(), cycles * kCountsPerCycle);
        EXPECT_TRUE(storage_.updates().empty());
    }
    EXPECT_TRUE(has("Device.IP.Interface.1.Name"));
    EXPECT_TRUE(has("Device.DeviceInfo.DeviceLog"));
    EXPECT_FALSE(worker_.isOnline());
}

TEST_F(WorkerTest, AStopEndsTheLoopWithoutAFurtherCycleUntilTheNextStart) {
    EXPECT_FALSE(worker_.isOnline());
    EXPECT_TRUE(storage_.listAddresses().empty());
    for (int starts = 1; starts <= 2; ++starts) {
        worker_.start();
        EXPECT_TRUE(worker_.isOnline());
        ASSERT_TRUE(waitForCounts(kCountsPerCycle));
        worker_.stop();
        EXPECT_FALSE(worker_.isOnline());
        EXPECT_EQ(box::calls("ps").size(), kCountsPerCycle);
        EXPECT_TRUE(has("Device.DeviceInfo.SerialNumber"));
        EXPECT_TRUE(has("Device.DeviceInfo.DeviceLog"));
        EXPECT_TRUE(has("Device.Services.STBService.1.Enable"));
        box::clearCalls("ps");
    }
}

TEST_F(WorkerTest, ACycleUnderWayFinishesBeforeTheStop) {
    box::setFault("ps", "slow 1");
    worker_.start();
    ASSERT_TRUE(waitForCounts(1));
    worker_.stop();
    EXPECT_EQ(box::calls("ps").size(), kCountsPerCycle);
    EXPECT_TRUE(has("Device.DeviceInfo.DeviceLog"));
}

TEST_F(WorkerTest, FiveQuietSecondsFollowASlowCycle) {
    box::setFault("ps", "slow 3");  // six seconds a cycle
    worker_.start();
    ASSERT_TRUE(box::waitUntil([&] { return has("Device.DeviceInfo.DeviceLog"); }));
    const NSTime endOfCycle = NSTime::nowRelative();
    ASSERT_TRUE(waitForCounts(kCountsPerCycle + 1));
    // The log of the first cycle was seen a moment after it was stored, hence the tenth of a
    // second.
    EXPECT_GE((NSTime::nowRelative() - endOfCycle).toInt64(), 4'900'000);
    box::setFault("ps", "");
    worker_.stop();
}

TEST_F(WorkerTest, AWorkerThatFailsIsNoLongerOnline) {
    // The kernel always has this file; without it the memory figures cannot be read.
    ASSERT_EQ(std::system("mount --bind /dev/null /proc/meminfo"), 0);
    worker_.start();
    EXPECT_TRUE(box::waitUntil([&] { return !worker_.isOnline(); }));
}

TEST_F(WorkerTest, TheDestructorJoinsARunningThread) {
    auto worker = std::make_unique<TR::Worker>(&storage_);
    worker->start();
    ASSERT_TRUE(waitForCounts(1));
    worker.reset();
    EXPECT_TRUE(has("Device.DeviceInfo.DeviceLog"));
}

}  // namespace
