#include "daemon/Process.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <thread>

#include <unistd.h>

namespace {

using std::chrono::seconds;

volatile std::sig_atomic_t handled = 0;

class ProcessTest : public ::testing::Test {
  protected:
    void SetUp() override { TR::Process::setUp(); }
};

TEST_F(ProcessTest, WaitingEndsWithoutASignal) {
    EXPECT_FALSE(TR::Process::waitForInterrupt(seconds(0)));
}

TEST_F(ProcessTest, ASignalThatCameBeforeTheWaitIsNotLost) {
    kill(getpid(), SIGINT);
    EXPECT_TRUE(TR::Process::waitForInterrupt(seconds(10)));
    EXPECT_FALSE(TR::Process::waitForInterrupt(seconds(0)));
}

TEST_F(ProcessTest, ASignalEndsTheWait) {
    std::thread sender([] { kill(getpid(), SIGINT); });
    EXPECT_TRUE(TR::Process::waitForInterrupt(seconds(60)));
    sender.join();
}

TEST_F(ProcessTest, AThreadThatIsStartedBeforeLetsNoSignalThrough) {
    handled = 0;
    std::signal(
        SIGINT, [](int) { handled = 1; });
    std::thread([] { raise(SIGINT); }).join();  // to that thread alone
    EXPECT_EQ(handled, 0);
    kill(getpid(), SIGINT);
    EXPECT_EQ(handled, 0);
    TR::Process::letInterruptThrough();
    EXPECT_EQ(handled, 1);
}

TEST_F(ProcessTest, WritingToAClosedPipeFails) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    EXPECT_EQ(write(ends[1], "x", 1), -1);
    close(ends[1]);
}

}  // namespace
