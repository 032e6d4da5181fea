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

class MonitoringTest : public DaemonTest {
  protected:
    void SetUp() override { start(); }

    void write(const std::string& address, const std::string& text) {
        ASSERT_TRUE(client().set(address, text).ok) << address;
    }
};

TEST_F(MonitoringTest, NoWriteAtARandomMomentIsLost) {
    // Two cycles' worth of writes, at moments that have nothing to do with the cycles: each must
    // read back, now and just before the next one.
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
    write(kReset, "1");
    waitForCycles(2);
    EXPECT_EQ(value(kReset), "0");
    EXPECT_EQ(value(kStreamEnable), "1");
    EXPECT_EQ(value(kStreamStatus), "Enabled");
    EXPECT_EQ(value(kSampleState), "Enabled");
}

}  // namespace
