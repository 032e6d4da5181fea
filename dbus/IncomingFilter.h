#pragma once

#include <dbus-c++/dbus.h>

namespace TR {

/// Looks at every message before the binding does. The interface is optional in a method call, and
/// the binding falls over a call without one: such a call gets the interface that its member
/// belongs to, or its answer here where nobody else would give it. After `drop()` every message is
/// thrown away. Lives on the D-Bus thread, no longer than its connection.
class IncomingFilter {
  public:
    explicit IncomingFilter(DBus::Connection& connection);
    ~IncomingFilter();
    IncomingFilter(const IncomingFilter&) = delete;
    IncomingFilter& operator=(const IncomingFilter&) = delete;

    /// From now on nothing is carried out: a closed connection could not carry the reply.
    void drop() { isDropping_ = true; }

  private:
    /// True when the message needs nobody else.
    bool filter(const DBus::Message& message);

    DBus::Connection& connection_;
    DBus::MessageSlot slot_;
    bool isDropping_ = false;
};

}  // namespace TR
