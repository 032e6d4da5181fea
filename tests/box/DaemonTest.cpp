#include "tests/box/DaemonTest.h"

#include "tests/support/Talker.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iostream>

namespace {

// The signal stops one thread after the other.
bool isStopped(pid_t pid) {
    const std::filesystem::path tasks = "/proc/" + std::to_string(pid) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(tasks))
        if (box::readFile(task.path() / "stat").find(") T ") == std::string::npos) return false;
    return true;
}

}  // namespace

DaemonTest::~DaemonTest() {
    if (!HasFailure() || !daemon_) return;
    constexpr std::size_t kEnough = 5000;  // a flooding command has printed ten megabytes
    const std::string output = daemon_->output();
    std::cout << (daemon_->isRunning() ? "The daemon runs" : "The daemon has ended") << "\n"
              << output.substr(output.size() - std::min(output.size(), kEnough));
}

void DaemonTest::startBus(const std::string& limits) {
    bus_.reset();  // it takes its address away
    bus_ = std::make_unique<PrivateBus>(limits);
}

void DaemonTest::launch(const Child::Environment& environment,
                        const std::function<void()>& prepare) {
    daemon_ = std::make_unique<Child>(std::vector<std::string>{KELM_TRD_PROGRAM},
                                      "/tmp/daemon-output", environment, prepare);
}

void DaemonTest::start(const std::string& limits, const Child::Environment& environment,
                       const std::function<void()>& prepare) {
    startBus(limits);
    launch(environment, prepare);
    waitForFirstCycle();
}

void DaemonTest::connect() {
    client_ = std::make_unique<TrClient>(bus_->address());
}

void DaemonTest::waitForFirstCycle() {
    connect();
    client().setTimeout(deadline_);
    ASSERT_TRUE(::waitForFirstCycle(client(), deadline_));
}

void DaemonTest::waitForCycles(std::size_t count) {
    // The cycle under way, if there is one, may have read its sources already.
    ASSERT_TRUE(box::waitForCalls("ps", 2 * (box::cyclesSoFar() + 1 + count)));
    expectAnswers();  // the store mutex is free again, so the cycle's last values are in
}

bool DaemonTest::logHas(const std::string& text) const {
    return daemon_->output().find(text) != std::string::npos;
}

bool DaemonTest::waitForLog(const std::string& text) const {
    return box::waitUntil([&] { return logHas(text); });
}

void DaemonTest::watch(const std::vector<std::string>& parameters) {
    box::writeNotificationFile(parameters);
    ASSERT_TRUE(client().updateNotifTable().ok);
}

void DaemonTest::hang() {
    daemon_->send(SIGSTOP);
    ASSERT_TRUE(box::waitUntil([this] { return isStopped(daemon_->pid()); }));
}

void DaemonTest::expectNoMoreThan(const Vitals& before) {
    Vitals now;
    const auto isAsBefore = [&] {
        now = quietVitalsOf(daemon_->pid());
        return now.holdsNoMoreThan(before);
    };
    EXPECT_TRUE(box::waitUntil(isAsBefore, deadline_)) << before << "; now: " << now;
}

void DaemonTest::expectEnd(const ExitStatus& status) {
    const auto end = daemon_->waitForEnd(deadline_);
    ASSERT_TRUE(end.has_value()) << "still running";
    EXPECT_EQ(*end, status);
}

void DaemonTest::expectOrderlyStop() {
    daemon_->send(SIGINT);
    expectEnd({0, 0});
}

void DaemonTest::expectAnswers() {
    EXPECT_EQ(value("Device.DeviceInfo.Manufacturer"), "KELM");
}
