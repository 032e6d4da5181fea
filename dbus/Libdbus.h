#pragma once

#include <dbus-c++/dbus.h>
#include <dbus/dbus.h>

#include <memory>

/// libdbus's objects behind the binding's, for what the binding does not pass on. The handles are
/// borrowed: they live as long as the binding's object.
namespace TR::Libdbus {

DBusConnection* handleOf(const DBus::Connection& connection);
DBusMessage* handleOf(const DBus::Message& message);

struct Unref {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using OwnedMessage = std::unique_ptr<DBusMessage, Unref>;

}  // namespace TR::Libdbus
