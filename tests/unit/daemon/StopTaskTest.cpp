#include "daemon/StopTask.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace {

TEST(StopTaskTest, IsNotUnderWayBeforeItsStart) {
    TR::StopTask task;
    EXPECT_FALSE(task.isUnderWay());
}

TEST(StopTaskTest, RunsBesideItsCaller) {
    std::promise<void> release;
    TR::StopTask task;
    task.start([&] { release.get_future().wait(); });
    EXPECT_TRUE(task.isUnderWay());
    release.set_value();
    while (task.isUnderWay()) std::this_thread::yield();
}

TEST(StopTaskTest, IsJoinedByItsDestructor) {
    bool done = false;
    {
        TR::StopTask task;
        task.start([&] { done = true; });
    }
    EXPECT_TRUE(done);
}

}  // namespace
