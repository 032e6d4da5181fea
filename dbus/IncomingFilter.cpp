#include "dbus/IncomingFilter.h"

#include "dbus/TRDBusAdaptor.h"

#include <dbus/dbus.h>

#include <string>

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

const char* interfaceOf(const std::string& member) {
    return member == "Introspect" ? DBUS_INTERFACE_INTROSPECTABLE : TRDBusAdaptor::kInterface;
}

}  // namespace

IncomingFilter::IncomingFilter(DBus::Connection& connection) : connection_(connection) {
    slot_ = new DBus::Callback<IncomingFilter, bool, const DBus::Message&>(this,
                                                                           &IncomingFilter::filter);
    connection_.add_filter(slot_);
}

IncomingFilter::~IncomingFilter() {
    connection_.remove_filter(slot_);
}

bool IncomingFilter::filter(const DBus::Message& message) {
    if (isDropping_) return true;
    if (message.type() != DBUS_MESSAGE_TYPE_METHOD_CALL) return false;
    // The binding itself looks at its messages in this way: every kind is the same handle.
    auto call = static_cast<const DBus::CallMessage&>(message);
    if (call.interface() != nullptr) return false;
    const std::string member = call.member();
    // The two peer methods are libdbus's own, and it has already let this call pass.
    if (member == "Ping") return connection_.send(DBus::ReturnMessage(call));
    if (member == "GetMachineId") return connection_.send(machineIdReply(call));
    call.interface(interfaceOf(member));
    return false;
}

}  // namespace TR
