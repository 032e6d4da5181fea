#include "daemon/Interrupt.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <unistd.h>

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(InterruptTest, WaitingEndsWithoutASignal) {
    TR::Interrupt::block();
    EXPECT_FALSE(TR::Interrupt::wait(milliseconds(1)));
}

TEST(InterruptTest, ASignalThatCameBeforeTheWaitIsNotLost) {
    TR::Interrupt::block();
    kill(getpid(), SIGINT);
    EXPECT_TRUE(TR::Interrupt::wait(seconds(10)));
    EXPECT_FALSE(TR::Interrupt::wait(milliseconds(1)));
}

TEST(InterruptTest, ASignalEndsTheWait) {
    TR::Interrupt::block();
    std::thread sender([] { kill(getpid(), SIGINT); });
    EXPECT_TRUE(TR::Interrupt::wait(seconds(60)));
    sender.join();
}

TEST(InterruptTest, ASignalSentWhileACommandRunsIsNotLost) {
    TR::Interrupt::block();
    // system() ignores SIGINT in this whole process while the shell runs; the shell sends it just
    // then.
    EXPECT_EQ(std::system("kill -INT $PPID"), 0);
    EXPECT_TRUE(TR::Interrupt::wait(seconds(10)));
}

}  // namespace
