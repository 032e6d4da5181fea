#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

namespace {

const std::string kMonitoring = "Device.Services.STBService.1.ServiceMonitoring.";
const std::string kSampleEnable = kMonitoring + "SampleEnable";
const std::string kSampleInterval = kMonitoring + "SampleInterval";
const std::string kSampleState = kMonitoring + "SampleState";
const std::string kStreamEnable = kMonitoring + "MainStream.1.Enable";
const std::string kStreamStatus = kMonitoring + "MainStream.1.Status";
const std::string kReset = kMonitoring + "MainStream.1.Total.Reset";
const std::string kResetTime = kMonitoring + "MainStream.1.Total.ResetTime";
const std::string kDiscontinuities =
    kMonitoring + "MainStream.1.Total.MPEG2TSStats.PacketDiscontinuityCounter";
constexpr char kCounterFile[] = "/sys/class/tsdemux/discontinue_counter";

class MonitoringTest : public DaemonTest {
  protected:
    void SetUp() override { start(); }

    void write(const std::string& address, const std::string& text) {
        ASSERT_TRUE(client().set(address, text).ok) << address;
    }
    bool becomes(const std::string& address, const std::string& text) {
        return box::waitUntil([&] { return value(address) == text; });
    }
    long long number(const std::string& address) { return std::atoll(value(address).c_str()); }
};

TEST_F(MonitoringTest, SamplingWaitsForAnInterval) {
    EXPECT_EQ(value(kSampleInterval), "0");
    EXPECT_EQ(value(kMonitoring + "ReportSamples"), "10");
    write(kSampleEnable, "1");
    write(kSampleInterval, "9");
    waitForCycles(1);
    EXPECT_EQ(value(kSampleState), "Disabled");
    write(kSampleInterval, "10");
    EXPECT_TRUE(becomes(kSampleState, "Enabled"));
    write(kSampleEnable, "0");
    EXPECT_TRUE(becomes(kSampleState, "Disabled"));
}

TEST_F(MonitoringTest, DiscontinuitiesOfAnEnabledStreamAreCounted) {
    box::writeFile(kCounterFile, "100\n");
    write(kStreamEnable, "1");
    EXPECT_TRUE(becomes(kStreamStatus, "Enabled"));
    EXPECT_TRUE(becomes(kDiscontinuities, "100"));
    box::writeFile(kCounterFile, "130\n");
    EXPECT_TRUE(becomes(kDiscontinuities, "130"));
    box::writeFile(kCounterFile, "5\n");
    waitForCycles(1);
    EXPECT_EQ(value(kDiscontinuities), "130");
    box::writeFile(kCounterFile, "7\n");
    EXPECT_TRUE(becomes(kDiscontinuities, "132"));
}

TEST_F(MonitoringTest, AResetIsDoneOnceAndTheTriggerReadsZeroAgain) {
    box::writeFile(kCounterFile, "100\n");
    write(kStreamEnable, "1");
    ASSERT_TRUE(becomes(kDiscontinuities, "100"));
    ASSERT_TRUE(box::waitUntil([this] { return number(kResetTime) >= 8; }));
    const long long before = number(kResetTime);
    write(kReset, "1");
    EXPECT_TRUE(becomes(kReset, "0"));
    EXPECT_TRUE(becomes(kDiscontinuities, "0"));
    EXPECT_LT(number(kResetTime), before);
}

TEST_F(MonitoringTest, ATextThatIsNoNumberIsALogicError) {
    const auto reply = client().set(kSampleInterval, "soon");
    EXPECT_EQ(reply.errorName, "org.freedesktop.DBus.Error.Failed");
    EXPECT_EQ(reply.errorText, "Logic error");
    EXPECT_EQ(value(kSampleInterval), "0");
    write(kSampleInterval, "42abc");
    EXPECT_EQ(value(kSampleInterval), "42");
}

TEST_F(MonitoringTest, AMissingCounterIsToldOfAndKeepsTheTotal) {
    box::writeFile(kCounterFile, "3\n");
    write(kStreamEnable, "1");
    ASSERT_TRUE(becomes(kDiscontinuities, "3"));
    ASSERT_EQ(std::system((std::string("rm ") + kCounterFile).c_str()), 0);
    EXPECT_TRUE(
        box::waitUntil([this] { return logHas(std::string("Can't open ") + kCounterFile); }));
    EXPECT_TRUE(logHas("ERROR"));
    EXPECT_EQ(value(kDiscontinuities), "3");
}

TEST_F(MonitoringTest, NoWriteAtARandomMomentIsLost) {
    // Three cycles' worth of writes, at moments that have nothing to do with the cycles: each must
    // read back, now and just before the next one.
    std::mt19937 random(1);
    const std::size_t goal = box::calls("ps").size() + 6;
    int writes = 0;
    for (; writes < 1000 || box::calls("ps").size() < goal; ++writes) {
        const std::string enable = writes % 2 == 0 ? "1" : "0";
        const std::string interval = std::to_string(10 + writes % 50);
        write(kStreamEnable, enable);
        write(kSampleInterval, interval);
        write(kSampleEnable, enable);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 15000));
        ASSERT_EQ(value(kStreamEnable), enable) << "after " << writes << " writes";
        ASSERT_EQ(value(kSampleInterval), interval) << "after " << writes << " writes";
        ASSERT_EQ(value(kSampleEnable), enable) << "after " << writes << " writes";
    }
    write(kStreamEnable, "1");
    write(kSampleEnable, "1");
    waitForCycles(2);
    EXPECT_EQ(value(kStreamEnable), "1");
    EXPECT_EQ(value(kStreamStatus), "Enabled");
    EXPECT_EQ(value(kSampleState), "Enabled");
}

TEST_F(MonitoringTest, NoResetAtARandomMomentIsLost) {
    std::mt19937 random(1);
    for (int i = 0; i < 4; ++i) {
        const long long before = number(kResetTime);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 5'000'000));
        write(kReset, "1");
        ASSERT_TRUE(becomes(kReset, "0")) << i;
        // Done, not just taken back: the time since the reset is shorter than the one since the
        // last.
        ASSERT_LE(number(kResetTime), before + 1) << i;
    }
}

}  // namespace
