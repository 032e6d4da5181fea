#include "tests/box/DaemonTest.h"

#include <algorithm>

void DaemonTest::startBus(const std::string& limits) { bus_ = std::make_unique<PrivateBus>(limits); }

void DaemonTest::launch(const Child::Environment& environment) {
    daemon_ = std::make_unique<Child>(std::vector<std::string>{KELM_TRD_PROGRAM}, "/tmp/daemon-output",
                                      environment);
}

void DaemonTest::start(const std::string& limits) {
    startBus(limits);
    launch();
    waitForFirstCycle();
}

void DaemonTest::waitForFirstCycle() {
    client_ = std::make_unique<TrClient>(bus_->address());
    ASSERT_TRUE(box::waitUntil([this] {
        const auto list = client().listParametersOnly().list;
        return std::find(list.begin(), list.end(), "Device.DeviceInfo.DeviceLog") != list.end();
    })) << daemon_->output();
}

void DaemonTest::waitForCycles(std::size_t count) {
    const std::size_t goal = box::calls("ps").size() + 2 * count;
    ASSERT_TRUE(box::waitUntil([=] { return box::calls("ps").size() >= goal; }));
    expectAnswers();  // the store mutex is free again, so the cycle's last values are in
}

bool DaemonTest::logHas(const std::string& text) const {
    return daemon_->output().find(text) != std::string::npos;
}

void DaemonTest::expectEnd(const ExitStatus& status) {
    const auto end = daemon_->waitForEnd();
    ASSERT_TRUE(end.has_value()) << "still running\n" << daemon_->output();
    EXPECT_EQ(*end, status) << daemon_->output();
}

void DaemonTest::expectAnswers() {
    EXPECT_EQ(value("Device.DeviceInfo.Manufacturer"), "KELM") << daemon_->output();
}
