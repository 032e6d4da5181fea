#include "dbus/DBusWorker.h"

#include "dbus/IncomingFilter.h"
#include "dbus/TRDBusAdaptor.h"
#include "stb/src/common/STBLogger.h"

#include <string>

namespace TR {

namespace {

constexpr char kServiceName[] = "com.kelm.stb.TR";

std::string nameOwner(DBus::Connection& connection) {
    DBus::CallMessage call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "GetNameOwner");
    DBus::MessageIter writer = call.writer();
    writer.append_string(kServiceName);
    return connection.send_blocking(call).reader().get_string();
}

// The request succeeds also when the name is somebody else's; only its owner tells.
void warnWhenNameIsTaken(DBus::Connection& connection) {
    const std::string owner = nameOwner(connection);
    if (owner == connection.unique_name()) return;
    STBLogger_log(kelmLogParams(), "", STBLogLevel::Warn, __LINE__, "dbus/DBusWorker",
                  "The name %s is owned by %s; serving as %s only", kServiceName, owner.c_str(),
                  connection.unique_name());
}

}  // namespace

DBusWorker::DBusWorker(Storage* storage) : storage_(storage) {
    DBus::default_dispatcher = &dispatcher_;
}

DBusWorker::~DBusWorker() {
    dispatcher_.leave();
    shutdown();
    adaptor_.reset();
    DBus::default_dispatcher = nullptr;
}

void DBusWorker::start() {
    if (!isRunning()) dispatcher_.rearm();
    startThread(nullptr);
}

void DBusWorker::stop() {
    dispatcher_.leave();
    stopThread();
}

void DBusWorker::run() {
    DBus::Connection connection = DBus::Connection::SessionBus();
    const IncomingFilter filter(connection, dispatcher_);  // closes it on every way out
    connection.exit_on_disconnect(false);                  // main decides how the process ends
    connection.request_name(kServiceName, 0);
    warnWhenNameIsTaken(connection);
    adaptor_ = std::make_unique<TRDBusAdaptor>(connection, storage_);
    dispatcher_.enter();
}

}  // namespace TR
