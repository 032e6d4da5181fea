#pragma once

#include "tests/box/DaemonTest.h"
#include "tests/support/Faults.h"

#include <map>
#include <string>

/// One life of the unmodified daemon that meets faults: it starts, is given settings, works under
/// the faults for at least one whole cycle, then without them, and is looked at and stopped. Many
/// faults that do not hide each other share a life, since each costs two five-second cycles; the
/// test then checks what each fault is a matter of.
class FaultyLife : public DaemonTest {
  protected:
    /// Of what is read once, at the start. Taken away after the first cycle.
    virtual Fault faultsOfTheStart() { return {}; }
    /// Of what is read in every cycle or at a call.
    virtual Fault faults() { return {}; }
    /// Called while the faults last, beside the reading of the whole tree.
    virtual void underFaults() {}
    /// The same when they are gone.
    virtual void afterFaults() {}

    /// The test fails unless the daemon lives, answers, holds on to its settings and nothing else,
    /// and stops in order. The environment is added to the daemon's usual one.
    void live(const Child::Environment& environment = {});
    /// The parameter's values from before the faults and after them are the same.
    void expectSame(const char* address);
    std::string after(const std::string& address) { return after_[address]; }

  private:
    using Tree = std::map<std::string, std::string>;

    void giveSettings();
    void checkSettings();
    void waitForACycle();
    Tree readTree();

    Tree before_;
    Tree after_;
};
