#pragma once

#include "tests/support/Child.h"

#include <memory>
#include <string>

/// A test's own session bus, inside the box. Its address is in DBUS_SESSION_BUS_ADDRESS as
/// long as the object lives, also while the bus itself is down.
class PrivateBus {
  public:
    /// With \p limits, such as `<limit name="max_message_size">100000</limit>`, in its
    /// configuration.
    explicit PrivateBus(const std::string& limits = "");
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const std::string& address() const { return address_; }
    /// Ends the bus at once, as a crash would.
    void kill();
    /// Stops it from answering until it is woken; no connection is lost.
    void freeze();
    void wake();
    void start();

  private:
    std::string configuration_;
    std::string address_;
    std::unique_ptr<Child> daemon_;
};
