#include "dbus/Libdbus.h"

namespace TR::Libdbus {

namespace {

// The binding (libdbus-c++ 0.9.0) keeps its two private records out of its headers. The first
// member of each is the pointer to libdbus's object.
template <typename Handle, typename Record>
Handle* firstMember(const Record* record) {
    return *reinterpret_cast<Handle* const*>(record);
}

using ConnectionRecord = DBus::RefPtrI<DBus::Connection::Private>;
const ConnectionRecord& recordOf(const DBus::Connection& connection);

// The names in an explicit instantiation may be private ones.
template <ConnectionRecord DBus::Connection::*record>
struct PrivateMember {
    friend const ConnectionRecord& recordOf(const DBus::Connection& connection) {
        return connection.*record;
    }
};
template struct PrivateMember<&DBus::Connection::_pvt>;

struct OpenMessage : DBus::Message {
    using DBus::Message::_pvt;
};

}  // namespace

DBusConnection* handleOf(const DBus::Connection& connection) {
    return firstMember<DBusConnection>(recordOf(connection).get());
}

DBusMessage* handleOf(const DBus::Message& message) {
    return firstMember<DBusMessage>((message.*&OpenMessage::_pvt).get());
}

}  // namespace TR::Libdbus
