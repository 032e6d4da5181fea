#pragma once

#include "tests/support/Box.h"
#include "tests/support/TrClient.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>

/// Waits until the daemon's first cycle is over, so that the tree is whole; false when it is not in
/// time.
bool waitForFirstCycle(TrClient& client, std::chrono::milliseconds deadline = box::kDeadline);

/// A client that reads what it knows and, as one of the first four, writes a setting that no other
/// one writes. One thread talks; the counts may be read from any.
class Talker {
  public:
    Talker(const std::string& bus, std::size_t number) : client_(bus), number_(number) {}

    /// Four calls at least.
    void talkOnce();
    std::size_t calls() const { return calls_; }
    /// Answers that were lost, wrong or another client's.
    std::size_t mistakes() const { return mistakes_; }

  private:
    void expect(bool isRight);
    void write(const std::string& address);

    TrClient client_;
    const std::size_t number_;
    std::size_t round_ = 0;
    std::atomic<std::size_t> calls_{0};
    std::atomic<std::size_t> mistakes_{0};
};

/// Parameters whose text stays as long as the box is left alone, and that text; any number will do.
struct KnownParameter {
    const char* address;
    const char* text;
};
const KnownParameter& knownParameter(std::size_t number);
