#include "tests/support/Box.h"
#include "tests/unit/servicemonitoring/Monitored.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

const std::string kCounter = "/sys/class/tsdemux/discontinue_counter";

class DiscontinuityCounterTest : public ::testing::Test {
  protected:
    void enable() {
        service_.cycle();
        service_.write("MainStream.1.Enable", "1");
    }

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

TEST_F(DiscontinuityCounterTest, ItsGrowthIsTheTotalOfAnEnabledStream) {
    enable();
    EXPECT_EQ(totalAfter("0"), "0");
    EXPECT_EQ(totalAfter("5"), "5");
    EXPECT_EQ(totalAfter("5"), "5");
    EXPECT_EQ(totalAfter("12"), "12");
}

TEST_F(DiscontinuityCounterTest, EnablingCountsInTheCycleThatTakesIt) {
    EXPECT_EQ(totalAfter("3"), "0");
    service_.write("MainStream.1.Enable", "1");
    EXPECT_EQ(totalAfter("3"), "3");
    service_.write("MainStream.1.Enable", "0");
    EXPECT_EQ(totalAfter("4"), "3");
}

TEST_F(DiscontinuityCounterTest, GoingDownItDoesNotLowerTheTotal) {
    enable();
    EXPECT_EQ(totalAfter("100"), "100");
    EXPECT_EQ(totalAfter("2"), "100");
    EXPECT_EQ(totalAfter("5"), "103");
}

TEST_F(DiscontinuityCounterTest, ItMayWrapNearTwoToThe31st) {
    enable();
    EXPECT_EQ(totalAfter("2147483647"), "2147483647");
    EXPECT_EQ(totalAfter("-2147483648"), "2147483647");
    EXPECT_EQ(totalAfter("-2147483640"), "2147483655");
}

TEST_F(DiscontinuityCounterTest, BeyondTheRangeItIsIgnored) {
    enable();
    EXPECT_EQ(totalAfter("2147483647"), "2147483647");
    EXPECT_EQ(totalAfter("2147483648"), "2147483647");
    EXPECT_EQ(totalAfter("99999999999999999999"), "2147483647");
    EXPECT_EQ(totalAfter("-99999999999999999999"), "2147483647");
    EXPECT_EQ(totalAfter("2147483647"), "2147483647");
}

TEST_F(DiscontinuityCounterTest, MissingItIsIgnoredAndLogged) {
    enable();
    EXPECT_EQ(totalAfter("10"), "10");
    std::filesystem::remove(kCounter);
    EXPECT_NE(logOfACycle().find("Can't open " + kCounter + "\n"), std::string::npos);
    EXPECT_EQ(totalAfterACycle(), "10");
    // Neither from 0 again nor twice: the last reading was kept.
    EXPECT_EQ(totalAfter("13"), "13");
}

TEST_F(DiscontinuityCounterTest, WithoutANumberItIsIgnored) {
    enable();
    EXPECT_EQ(totalAfter("10"), "10");
    for (const char* content : {"", "none", "\xff\xfe", "-"}) {
        EXPECT_EQ(totalAfter(content), "10") << content;
        EXPECT_EQ(totalAfter("10"), "10") << content;
    }
}

TEST_F(DiscontinuityCounterTest, AfterAResetOnlyNewDiscontinuitiesCount) {
    enable();
    EXPECT_EQ(totalAfter("50"), "50");
    service_.write("MainStream.1.Total.Reset", "1");
    EXPECT_EQ(totalAfter("50"), "0");
    EXPECT_EQ(totalAfter("57"), "7");
    service_.write("MainStream.1.Total.Reset", "1");
    EXPECT_EQ(totalAfter("60"), "3");
}

}  // namespace
