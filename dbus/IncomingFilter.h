#pragma once

#include "dbus/BusDispatcher.h"

#include <dbus-c++/dbus.h>

namespace TR {

/// Serves a connection from its opening to its end: looks at every message before the binding does,
/// and closes the connection when it is destroyed. A message waits until the replies before it have
/// been sent, so that at most one reply is in memory. Both references are borrowed. D-Bus thread
/// only; destroyed before the connection.
class IncomingFilter {
  public:
    IncomingFilter(DBus::Connection& connection, BusDispatcher& dispatcher);
    ~IncomingFilter();
    IncomingFilter(const IncomingFilter&) = delete;
    IncomingFilter& operator=(const IncomingFilter&) = delete;

  private:
    /// True when the message needs nobody else.
    bool filter(const DBus::Message& message);

    DBus::Connection& connection_;
    BusDispatcher& dispatcher_;
    DBus::MessageSlot slot_;
};

}  // namespace TR
