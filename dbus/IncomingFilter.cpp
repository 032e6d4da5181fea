#include "dbus/IncomingFilter.h"

#include "dbus/Libdbus.h"
#include "dbus/TRDBusAdaptor.h"

#include <new>
#include <string_view>

namespace TR {

namespace {

constexpr int kDescriptorsAtOnce = 253;  // SCM_MAX_FD in the kernel

bool isCallWithoutEffect(DBusMessage* message) {
    return dbus_message_get_no_reply(message) != FALSE && !TRDBusAdaptor::hasEffect(message);
}

// The two peer methods are libdbus's, which answers them when the call names their interface.
// True when this was one of them, without.
bool answersPeerCall(DBusConnection* connection, DBusMessage* call) {
    const std::string_view member = dbus_message_get_member(call);
    const bool isMachineId = member == "GetMachineId";
    if (!isMachineId && member != "Ping") return false;
    const Libdbus::OwnedMessage reply(dbus_message_new_method_return(call));
    if (reply == nullptr) return false;
    if (isMachineId) {
        char* const id = dbus_get_local_machine_id();
        const char* const text = id == nullptr ? "" : id;
        dbus_message_append_args(reply.get(), DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
        dbus_free(id);
    }
    return dbus_connection_send(connection, reply.get(), nullptr) != FALSE;
}

}  // namespace

IncomingFilter::IncomingFilter(DBus::Connection& connection, BusDispatcher& dispatcher)
    : connection_(connection), dispatcher_(dispatcher) {
    DBusConnection* const handle = Libdbus::handleOf(connection_);
    // libdbus gives the connection up over descriptors that it has no room for. So one message may
    // hold as many as the kernel passes at once, and nothing is read while it lives: then as many
    // of the process's descriptors have to be free, and not those for a whole queue.
    dbus_connection_set_max_message_unix_fds(handle, kDescriptorsAtOnce);
    dbus_connection_set_max_received_unix_fds(handle, 1);
    if (dbus_connection_add_filter(handle, &filter, this, nullptr) == FALSE) throw std::bad_alloc();
}

// What is still in the binding's queue is taken from it and not carried out, as the connection is
// closed; the queue outlives the connection and must not refer to it.
IncomingFilter::~IncomingFilter() {
    connection_.disconnect();
    dispatcher_.dispatch_pending();
    dbus_connection_remove_filter(Libdbus::handleOf(connection_), &filter, this);
}

DBusHandlerResult IncomingFilter::filter(DBusConnection* connection, DBusMessage* message,
                                         void* self) {
    BusDispatcher& dispatcher = static_cast<IncomingFilter*>(self)->dispatcher_;
    if (!dispatcher.waitUntilSent()) return DBUS_HANDLER_RESULT_HANDLED;
    if (dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_METHOD_CALL)
        return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    const bool needsNobodyElse =
        isCallWithoutEffect(message) ||
        (dbus_message_get_interface(message) == nullptr && answersPeerCall(connection, message));
    return needsNobodyElse ? DBUS_HANDLER_RESULT_HANDLED : DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
}

}  // namespace TR
