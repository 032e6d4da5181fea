#pragma once

#include "tests/box/Vitals.h"
#include "tests/support/Child.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TrClient.h"

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>

/// One life of the unmodified daemon that meets faults: it starts, is given settings, works under
/// the faults for at least one whole cycle, then without them, and is looked at and stopped. Many
/// faults that do not hide each other share a life, since each costs two five-second cycles; each
/// row of the tables then checks its own fault.
class FaultyLife {
  public:
    struct Script {
        /// Faults of what is read once, at the start; set before it and taken away after it.
        std::function<void()> spoilStart = [] {};
        std::function<void()> restoreStart = [] {};
        /// Faults of what is read in every cycle or at a call.
        std::function<void(pid_t daemon)> spoil = [](pid_t) {};
        std::function<void(pid_t daemon)> restore = [](pid_t) {};
        /// Called while the faults last, beside the reading of the whole tree.
        std::function<void(TrClient&)> underFaults = [](TrClient&) {};
        /// The same when they are gone.
        std::function<void(TrClient&)> afterFaults = [](TrClient&) {};
        /// Added to the daemon's usual environment.
        Child::Environment environment = {};
        /// Commands that hang are killed from time to time, as a watchdog would.
        bool killHanging = false;
    };

    /// Runs it; what went wrong is in `complaint()`.
    explicit FaultyLife(const Script& script);

    /// Empty when the daemon lived, answered, held on to its settings and nothing else, and stopped
    /// in order.
    const std::string& complaint() const { return complaint_; }
    /// What these parameters held before and after the faults.
    std::string before(const std::string& address) const { return valueIn(before_, address); }
    std::string after(const std::string& address) const { return valueIn(after_, address); }

  private:
    using Tree = std::map<std::string, std::string>;

    static std::string valueIn(const Tree& tree, const std::string& address);
    void live(const Script& script);
    void start(const Child::Environment& environment);
    void giveSettings();
    void checkSettings();
    void waitForCycles(unsigned cycles);
    Tree readTree();
    void checkVitals(const Vitals& baseline);
    void stop();

    std::unique_ptr<PrivateBus> bus_;
    std::unique_ptr<Child> daemon_;
    std::unique_ptr<TrClient> client_;
    std::atomic<pid_t> daemonPid_{0};  ///< for the watchdog's thread
    std::string complaint_;
    Tree before_;
    Tree after_;
};
