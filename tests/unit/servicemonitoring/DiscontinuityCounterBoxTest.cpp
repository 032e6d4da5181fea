#include "tests/support/Box.h"
#include "tests/unit/servicemonitoring/Monitored.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

const std::string kCounter = "/sys/class/tsdemux/discontinue_counter";

class DiscontinuityCounterTest : public ::testing::Test {
  protected:
    std::string totalAfter(const std::string& counter) {
        box::writeFile(kCounter, counter + "\n");
        return totalAfterACycle();
    }

    std::string totalAfterACycle() {
        service_.cycle();
        return service_.text("MainStream.1.Total.MPEG2TSStats.PacketDiscontinuityCounter");
    }

    /// One cycle without a usable counter; what it logs.
    std::string logOfACycle() {
        ::testing::internal::CaptureStderr();
        service_.cycle();
        return ::testing::internal::GetCapturedStderr();
    }

    Monitored<TR::ServiceMonitoring> service_;
};

TEST_F(DiscontinuityCounterTest, IsNotReadWhileTheStreamIsDisabled) {
    std::filesystem::remove(kCounter);
    EXPECT_EQ(logOfACycle(), "");
    EXPECT_EQ(totalAfter("5"), "0");
}

TEST_F(DiscontinuityCounterTest, EnablingCountsInTheCycleThatTakesIt) {
    EXPECT_EQ(totalAfter("3"), "0");
    service_.write("MainStream.1.Enable", "1");
    EXPECT_EQ(totalAfter("3"), "3");
    EXPECT_EQ(totalAfter("12"), "12");
    service_.write("MainStream.1.Enable", "0");
    EXPECT_EQ(totalAfter("14"), "12");
}

// Neither from 0 again nor twice: the last reading is kept.
TEST_F(DiscontinuityCounterTest, MissingOrNotANumberItIsIgnored) {
    service_.cycle();
    service_.write("MainStream.1.Enable", "1");
    EXPECT_EQ(totalAfter("10"), "10");
    std::filesystem::remove(kCounter);
    EXPECT_NE(logOfACycle().find("Can't open " + kCounter + "\n"), std::string::npos);
    EXPECT_EQ(totalAfterACycle(), "10");
    EXPECT_EQ(totalAfter("none"), "10");
    EXPECT_EQ(totalAfter("13"), "13");
}

}  // namespace
