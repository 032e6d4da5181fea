#pragma once

#include "tests/support/Child.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TrClient.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// One service and a client of it.
struct Service {
    std::unique_ptr<Child> process;
    std::unique_ptr<TrClient> client;

    pid_t pid() const { return process->pid(); }
    /// Each ends the program when the service does not answer.
    void ping() const;
    void get() const;
    void list(std::size_t expected) const;
    /// 64 calls of get_value at once.
    void getMany() const;
};

constexpr int kInFlight = 64;
constexpr std::size_t kManyParameters = 10'000;

/// Everything that is measured, on one private bus: the daemon as it is, a second one whose store
/// has been filled to 10,000 parameters (served under its unique name, as the first has the
/// well-known one), and the two reference services. Each row calls its subjects in turn.
class Fleet {
    PrivateBus bus_;  // before its users

  public:
    Fleet();

    Service daemon, full, dbuscxx, sdbus;

    /// Waits for the end of the cycle of both daemons; then there are more than three quiet
    /// seconds.
    void waitForQuiet();
    /// True when a cycle has begun since `waitForQuiet`.
    bool isCycleUnderWay() const;
    void stopReferences();
    const PrivateBus& bus() const { return bus_; }

  private:
    void startFull();
    void startReferences();
    std::vector<std::string> fill();
    Service start(const std::vector<std::string>& command, const std::string& name) const;

    std::uintmax_t loggedBytes_ = 0;
};

/// Starts the daemon and waits for its first cycle.
Service startDaemon(const PrivateBus& bus, const std::string& output);

[[noreturn]] void fail(const std::string& why);

}  // namespace bench
