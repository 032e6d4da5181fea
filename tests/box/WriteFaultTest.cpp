// Settings that cannot be written: the old one stays, and the next one can be written again when
// the fault is gone.

#include "tests/box/DaemonTest.h"
#include "tests/box/SystemFaults.h"
#include "tests/box/Vitals.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include <sys/resource.h>

namespace {

const std::string kHost = "Device.Services.STBService.1.X_Kelm.Config.SyslogHost";
const std::string kZone = "Device.Services.STBService.1.X_Kelm.Config.TimeZone";

// The daemon can open no descriptor beyond those that it has open now.
void limitDescriptors(pid_t daemon) {
    faults::setLimit(daemon, RLIMIT_NOFILE, 3);
}

void freeDescriptors(pid_t daemon) {
    faults::setLimit(daemon, RLIMIT_NOFILE, RLIM_INFINITY);
}

struct Row {
    const char* name;
    void (*spoil)(pid_t daemon);
    void (*restore)(pid_t daemon);
};

const Row kRows[] = {
    {"AFullDisk", [](pid_t) { faults::fillSettings(); }, [](pid_t) { faults::emptySettings(); }},
    {"AReadOnlyFolder", [](pid_t) { faults::setSettingsReadOnly(true); },
     [](pid_t) { faults::setSettingsReadOnly(false); }},
    {"TheDescriptorLimit", limitDescriptors, freeDescriptors},
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

std::string nameOf(const ::testing::TestParamInfo<Row>& info) {
    return info.param.name;
}

class WriteFaultTest : public DaemonTest, public ::testing::WithParamInterface<Row> {
  protected:
    void SetUp() override {
        faults::mountSettings();
        startBus();
        launch();
        waitForFirstCycle();
        ASSERT_TRUE(client().set(kHost, "10.1.2.3").ok);
        ASSERT_TRUE(client().set(kZone, "MSK-3").ok);
    }
};

TEST_P(WriteFaultTest, LosesNoSetting) {
    const Vitals before = quietVitalsOf(daemon().pid());
    GetParam().spoil(daemon().pid());
    // A larger, a smaller or an empty write must not lose it; one that fits on a full disk may
    // replace it.
    for (int round = 0; round < 10; ++round) {
        EXPECT_TRUE(client().set(kHost, std::string(100'000, 'x')).ok);
        EXPECT_TRUE(client().set(kZone, "CET-1CEST").ok);
        EXPECT_TRUE(client()
                        .set("Device.Services.STBService.1.X_Kelm.Config.UpdateType",
                             std::string(8000, 'y'))
                        .ok);
    }
    GetParam().restore(daemon().pid());
    EXPECT_EQ(value(kHost), "10.1.2.3");
    const std::string zone = value(kZone);
    EXPECT_TRUE(zone == "MSK-3" || zone == "CET-1CEST") << zone;
    EXPECT_EQ(value("Device.Services.STBService.1.X_Kelm.Config.UpdateType"), "");
    EXPECT_TRUE(client().set(kHost, "10.9.9.9").ok);
    EXPECT_EQ(value(kHost), "10.9.9.9");
    EXPECT_TRUE(
        box::waitUntil([&] { return quietVitalsOf(daemon().pid()).holdsNoMoreThan(before); }));
    daemon().send(SIGINT);
    expectEnd({0, 0});
}

INSTANTIATE_TEST_SUITE_P(Writes, WriteFaultTest, ::testing::ValuesIn(kRows), nameOf);

}  // namespace
