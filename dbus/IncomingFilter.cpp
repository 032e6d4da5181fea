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

// libdbus answers the two peer methods only when the call names their interface. True when this
// call was one of them without an interface.
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
    // libdbus drops the connection when a message's descriptors exceed its limit, so the limit is
    // what the kernel passes at once. Nothing is read while a message lives, so the process needs
    // that many free descriptors, not those for a whole queue.
    dbus_connection_set_max_message_unix_fds(handle, kDescriptorsAtOnce);
    dbus_connection_set_max_received_unix_fds(handle, 1);
    if (dbus_connection_add_filter(handle, &filter, this, nullptr) == FALSE) throw std::bad_alloc();
}

// The binding's queue outlives the connection and must not refer to it. What it still holds is
// dropped, not carried out.
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
