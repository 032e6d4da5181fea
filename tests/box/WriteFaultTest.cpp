// Settings that cannot be written: the old one stays, and the next one can be written again when
// the fault is gone.

#include "tests/box/DaemonTest.h"
#include "tests/support/Faults.h"

#include <gtest/gtest.h>

#include <string>

#include <sys/resource.h>

namespace {

const std::string kConfig = "Device.Services.STBService.1.X_Kelm.Config.";
const std::string kHost = kConfig + "SyslogHost";
const std::string kZone = kConfig + "TimeZone";
const std::string kType = kConfig + "UpdateType";

struct Row {
    const char* name;
    Fault (*fault)(pid_t daemon);
};

const Row kRows[] = {
    {"AFullDisk", [](pid_t) { return faults::fullSettings(); }},
    {"AReadOnlyFolder", [](pid_t) { return faults::readOnlySettings(); }},
    {"TheFileSizeLimit", [](pid_t daemon) { return faults::limit(daemon, RLIMIT_FSIZE, 8); }},
    // The daemon can open no descriptor beyond those that it has open now.
    {"TheDescriptorLimit", [](pid_t daemon) { return faults::limit(daemon, RLIMIT_NOFILE, 3); }},
};

class WriteFaultTest : public DaemonTest, public ::testing::WithParamInterface<Row> {
  protected:
    void set(const std::string& address, const std::string& text) {
        EXPECT_TRUE(client().set(address, text).ok);
    }
};

TEST_P(WriteFaultTest, LosesNoSetting) {
    faults::mountSettings();
    start();
    set(kHost, "10.1.2.3");
    set(kZone, "MSK-3");
    const Vitals before = quietVitalsOf(daemon().pid());
    Fault fault = GetParam().fault(daemon().pid());
    // A larger, a smaller or an empty write must not lose it; one that fits on a full disk may
    // replace it.
    for (int round = 0; round < 10; ++round) {
        set(kHost, std::string(100'000, 'x'));
        set(kZone, "CET-1CEST");
        set(kType, std::string(8000, 'y'));
    }
    fault.reset();
    EXPECT_EQ(value(kHost), "10.1.2.3");
    const std::string zone = value(kZone);
    EXPECT_TRUE(zone == "MSK-3" || zone == "CET-1CEST") << zone;
    EXPECT_EQ(value(kType), "");
    set(kHost, "10.9.9.9");
    EXPECT_EQ(value(kHost), "10.9.9.9");
    expectNoMoreThan(before);
    expectOrderlyStop();
}

INSTANTIATE_TEST_SUITE_P(Writes, WriteFaultTest, ::testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
