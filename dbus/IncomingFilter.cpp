#include "dbus/IncomingFilter.h"

#include "dbus/Libdbus.h"
#include "dbus/TRDBusAdaptor.h"

#include <string_view>

namespace TR {

namespace {

constexpr int kDescriptorsAtOnce = 253;  // SCM_MAX_FD in the kernel

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
    // libdbus gives the connection up over descriptors that it has no room for. So one message may
    // hold as many as the kernel passes at once, and nothing is read while it lives: then as many
    // of the process's descriptors have to be free, and not those for a whole queue.
    DBusConnection* const handle = Libdbus::handleOf(connection_);
    dbus_connection_set_max_message_unix_fds(handle, kDescriptorsAtOnce);
    dbus_connection_set_max_received_unix_fds(handle, 1);
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
