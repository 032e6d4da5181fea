#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <chrono>
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
};

TEST_F(MonitoringTest, NoWriteAtARandomMomentIsLost) {
    // Two cycles of writes, at moments that have nothing to do with the cycles: each reads back,
    // now and just before the next one.
    box::writeFile(kCounterFile, "100\n");
    std::mt19937 random(1);
    const std::size_t goal = box::calls("ps").size() + 4;
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
    waitForCycles(1);
    EXPECT_EQ(value(kStreamEnable), "1");
    EXPECT_EQ(value(kStreamStatus), "Enabled");
    EXPECT_EQ(value(kSampleState), "Enabled");
    EXPECT_EQ(value(kDiscontinuities), "100");
    write(kReset, "1");
    EXPECT_TRUE(becomes(kReset, "0"));
    EXPECT_EQ(value(kDiscontinuities), "0");
}

}  // namespace
