#include "dbus/IncomingFilter.h"

#include "dbus/Libdbus.h"
#include "dbus/TRDBusAdaptor.h"

#include <string_view>

namespace TR {

namespace {

DBus::ReturnMessage machineIdReply(const DBus::CallMessage& call) {
    DBus::ReturnMessage reply(call);
    char* id = dbus_get_local_machine_id();
    DBus::MessageIter writer = reply.writer();
    writer.append_string(id == nullptr ? "" : id);
    dbus_free(id);
    return reply;
}

bool isCallWithoutEffect(DBusMessage* message) {
    return dbus_message_get_no_reply(message) != FALSE && !TRDBusAdaptor::hasEffect(message);
}

}  // namespace

IncomingFilter::IncomingFilter(DBus::Connection& connection, BusDispatcher& dispatcher)
    : connection_(connection), dispatcher_(dispatcher) {
    // A message with descriptors is the last one that is read until it has been freed, which closes
    // them. libdbus would give the connection up when they exceed the process's limit.
    dbus_connection_set_max_received_unix_fds(Libdbus::handleOf(connection_), 1);
    slot_ = new DBus::Callback<IncomingFilter, bool, const DBus::Message&>(this,
                                                                           &IncomingFilter::filter);
    connection_.add_filter(slot_);
}

// What is still in the binding's queue is taken from it and not carried out, as the connection is
// closed; the queue outlives the connection and must not refer to it.
IncomingFilter::~IncomingFilter() {
    connection_.disconnect();
    dispatcher_.dispatch_pending();
    connection_.remove_filter(slot_);
}

bool IncomingFilter::filter(const DBus::Message& message) {
    if (!dispatcher_.waitUntilSent()) return true;
    if (message.type() != DBUS_MESSAGE_TYPE_METHOD_CALL) return false;
    if (isCallWithoutEffect(Libdbus::handleOf(message))) return true;
    // The binding itself looks at its messages in this way: every kind is the same handle.
    const auto call = static_cast<const DBus::CallMessage&>(message);
    if (call.interface() != nullptr) return false;
    // The two peer methods are libdbus's own, and it has already let this call pass.
    const std::string_view member = call.member();
    if (member == "Ping") return connection_.send(DBus::ReturnMessage(call));
    if (member == "GetMachineId") return connection_.send(machineIdReply(call));
    return false;
}

}  // namespace TR
