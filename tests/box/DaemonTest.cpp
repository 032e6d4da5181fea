#include "tests/box/DaemonTest.h"

#include "tests/support/Talker.h"

#include <csignal>
#include <filesystem>

namespace {

// The signal stops one thread after the other.
bool isStopped(pid_t pid) {
    const std::filesystem::path tasks = "/proc/" + std::to_string(pid) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(tasks))
        if (box::readFile(task.path() / "stat").find(") T ") == std::string::npos) return false;
    return true;
}

}  // namespace

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
    ASSERT_TRUE(::waitForFirstCycle(client())) << daemon_->output();
}

void DaemonTest::waitForCycles(std::size_t count) {
    // The cycle under way, if there is one, may have read its sources already.
    ASSERT_TRUE(box::waitForCalls("ps", 2 * (box::cyclesSoFar() + 1 + count)));
    expectAnswers();  // the store mutex is free again, so the cycle's last values are in
}

bool DaemonTest::logHas(const std::string& text) const {
    return daemon_->output().find(text) != std::string::npos;
}

void DaemonTest::watch(const std::vector<std::string>& parameters) {
    box::writeNotificationFile(parameters);
    ASSERT_TRUE(client().updateNotifTable().ok);
}

void DaemonTest::hang() {
    daemon_->send(SIGSTOP);
    ASSERT_TRUE(box::waitUntil([this] { return isStopped(daemon_->pid()); }));
}

void DaemonTest::expectEnd(const ExitStatus& status) {
    const auto end = daemon_->waitForEnd();
    ASSERT_TRUE(end.has_value()) << "still running\n" << daemon_->output();
    EXPECT_EQ(*end, status) << daemon_->output();
}

void DaemonTest::expectAnswers() {
    EXPECT_EQ(value("Device.DeviceInfo.Manufacturer"), "KELM") << daemon_->output();
}
