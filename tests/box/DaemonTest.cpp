#include "tests/box/DaemonTest.h"

#include <algorithm>

void DaemonTest::startBus(const std::string& limits) {
    bus_ = std::make_unique<PrivateBus>(limits);
}

void DaemonTest::launch(const Child::Environment& environment,
                        const std::function<void()>& prepare) {
    daemon_ = std::make_unique<Child>(std::vector<std::string>{KELM_TRD_PROGRAM},
                                      "/tmp/daemon-output", environment, prepare);
}

void DaemonTest::start(const std::string& limits) {
    startBus(limits);
    launch();
    waitForFirstCycle();
}

void DaemonTest::connect() {
    client_ = std::make_unique<TrClient>(bus_->address());
}

void DaemonTest::waitForFirstCycle() {
    connect();
    ASSERT_TRUE(box::waitUntil([this] {
        const auto list = client().listParametersOnly().list;
        return std::find(list.begin(), list.end(), "Device.DeviceInfo.DeviceLog") != list.end();
    })) << daemon_->output();
}

void DaemonTest::waitForCycles(std::size_t count) {
    // The cycle under way, if there is one, may have read its sources already.
    const std::size_t cyclesBegun = box::calls("ps").size() / 2 + 1;
    const std::size_t goal = 2 * (cyclesBegun + count);
    ASSERT_TRUE(box::waitUntil([=] { return box::calls("ps").size() >= goal; }));
    expectAnswers();  // the store mutex is free again, so the cycle's last values are in
}

bool DaemonTest::logHas(const std::string& text) const {
    return daemon_->output().find(text) != std::string::npos;
}

void DaemonTest::watch(const std::vector<std::string>& parameters) {
    std::string rows;
    for (const std::string& parameter : parameters) rows += change(parameter, "");
    box::writeFile("/tmp/.easycwmp_notif_param_value", rows);
    ASSERT_TRUE(client().updateNotifTable().ok);
}

std::string DaemonTest::change(const std::string& parameter, const std::string& value) {
    return R"({ "parameter": ")" + parameter + R"(", "value": ")" + value +
           R"(", "notification": "2", "type": "xsd:string" })" + "\n";
}

void DaemonTest::expectEnd(const ExitStatus& status) {
    const auto end = daemon_->waitForEnd();
    ASSERT_TRUE(end.has_value()) << "still running\n" << daemon_->output();
    EXPECT_EQ(*end, status) << daemon_->output();
}

void DaemonTest::expectAnswers() {
    EXPECT_EQ(value("Device.DeviceInfo.Manufacturer"), "KELM") << daemon_->output();
}
