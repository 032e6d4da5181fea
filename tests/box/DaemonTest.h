#pragma once

#include "tests/support/Box.h"
#include "tests/support/Child.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TrClient.h"
#include "tests/support/Vitals.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// The unmodified daemon in the box, on its own session bus, spoken to over D-Bus only. After a
/// failure the test prints what the daemon printed last.
class DaemonTest : public ::testing::Test {
  protected:
    ~DaemonTest() override;

    void startBus(const std::string& limits = "");
    /// Starts the program and returns at once; \p prepare runs in its process before it.
    void launch(const Child::Environment& environment = {},
                const std::function<void()>& prepare = {});
    /// Starts bus and daemon and waits for the end of the first cycle.
    void start(const std::string& limits = "", const Child::Environment& environment = {},
               const std::function<void()>& prepare = {});
    void connect();
    void waitForFirstCycle();
    /// Waits until that many cycles have begun and ended from here on; each calls ps twice.
    void waitForCycles(std::size_t count);

    Child& daemon() { return *daemon_; }
    PrivateBus& bus() { return *bus_; }
    TrClient& client() { return *client_; }
    std::string value(const std::string& address) { return client().getValue(address).text; }
    bool logHas(const std::string& text) const;
    bool waitForLog(const std::string& text) const;

    /// Makes the CWMP client's file list these parameters and has the daemon read it.
    void watch(const std::vector<std::string>& parameters);
    /// The line that reports a watched parameter's new value to the client.
    static std::string change(const std::string& parameter, const std::string& value) {
        return box::notificationRow(parameter, value);
    }

    /// Stops every thread of the daemon, until it gets SIGCONT.
    void hang();
    /// Waits until the daemon holds no more threads, descriptors and children than before.
    void expectNoMoreThan(const Vitals& before);
    /// The daemon stops by itself in order, with this status.
    void expectEnd(const ExitStatus& status);
    /// One interrupt stops the daemon in order.
    void expectOrderlyStop();
    void expectAnswers();

    /// Of every wait for the daemon.
    std::chrono::seconds deadline_ = box::kDeadline;

  private:
    std::unique_ptr<PrivateBus> bus_;
    std::unique_ptr<Child> daemon_;
    std::unique_ptr<TrClient> client_;
};
