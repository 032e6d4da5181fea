#pragma once

#include <dbus-c++/dbus.h>

namespace TR {

/// The interface is optional in a method call, and the binding falls over a call without one. This
/// filter looks at every message first and gives such a call the interface that its member belongs
/// to, or answers it itself where nobody else would. Lives on the D-Bus thread, no longer than its
/// connection.
class DefaultInterface {
  public:
    explicit DefaultInterface(DBus::Connection& connection);
    ~DefaultInterface();
    DefaultInterface(const DefaultInterface&) = delete;
    DefaultInterface& operator=(const DefaultInterface&) = delete;

  private:
    /// True when the message has been answered here.
    bool filter(const DBus::Message& message);

    DBus::Connection& connection_;
    DBus::MessageSlot slot_;
};

}  // namespace TR
