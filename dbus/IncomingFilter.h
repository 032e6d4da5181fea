#pragma once

#include "dbus/BusDispatcher.h"

#include <dbus-c++/dbus.h>
#include <dbus/dbus.h>

namespace TR {

/// Serves a connection from its opening to its end: looks at every message before the binding does,
/// and closes the connection when it is destroyed. A message waits until the replies before it have
/// been sent, so that at most one reply is in memory. Both references are borrowed. D-Bus thread
/// only; destroyed before the connection. Throws std::bad_alloc when it cannot be made.
class IncomingFilter {
  public:
    IncomingFilter(DBus::Connection& connection, BusDispatcher& dispatcher);
    ~IncomingFilter();
    IncomingFilter(const IncomingFilter&) = delete;
    IncomingFilter& operator=(const IncomingFilter&) = delete;

  private:
    static DBusHandlerResult filter(DBusConnection* connection, DBusMessage* message, void* self);

    DBus::Connection& connection_;
    BusDispatcher& dispatcher_;
};

}  // namespace TR
