#include "dbus/DBusWorker.h"

#include "dbus/IncomingFilter.h"
#include "dbus/TRDBusAdaptor.h"
#include "stb/src/common/STBLogger.h"

#include <chrono>
#include <string>
#include <thread>

namespace TR {

namespace {

using std::chrono::milliseconds;

constexpr char kServiceName[] = "com.kelm.stb.TR";
constexpr char kSource[] = "dbus/DBusWorker";
constexpr milliseconds kConnectingPatience{500};
constexpr milliseconds kLookInterval{10};

std::string nameOwner(DBus::Connection& connection) {
    DBus::CallMessage call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "GetNameOwner");
    DBus::MessageIter writer = call.writer();
    writer.append_string(kServiceName);
    return connection.send_blocking(call).reader().get_string();
}

// The request also succeeds when another service has the name; only asking for the owner shows it.
void warnWhenNameIsTaken(DBus::Connection& connection) {
    const std::string owner = nameOwner(connection);
    if (owner == connection.unique_name()) return;
    STBLogger_log(kelmLogParams(), "", STBLogLevel::Warn, __LINE__, kSource,
                  "The name %s is owned by %s; serving as %s only", kServiceName, owner.c_str(),
                  connection.unique_name());
}

// The object is served whatever the bus answers: a client that knows the unique name reaches it.
void takeName(DBus::Connection& connection) {
    try {
        connection.request_name(kServiceName, 0);
        warnWhenNameIsTaken(connection);
    } catch (const DBus::Error& error) {
        STBLogger_log(kelmLogParams(), "", STBLogLevel::Warn, __LINE__, kSource,
                      "The name %s is not certain: %s; serving as %s at least", kServiceName,
                      error.what(), connection.unique_name());
    }
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
    if (!isRunning()) {
        dispatcher_.rearm();
        isServing_ = false;
    }
    startThread(nullptr);
}

void DBusWorker::stop() {
    dispatcher_.leave();
    for (auto left = kConnectingPatience; isConnecting(); left -= kLookInterval) {
        if (left <= milliseconds::zero()) return;
        std::this_thread::sleep_for(kLookInterval);
    }
    stopThread();
}

void DBusWorker::run() {
    DBus::Connection connection = DBus::Connection::SessionBus();
    const IncomingFilter filter(connection, dispatcher_);  // closes it on every way out
    connection.exit_on_disconnect(false);                  // main decides how the process ends
    takeName(connection);
    adaptor_ = std::make_unique<TRDBusAdaptor>(connection, storage_);
    isServing_ = true;
    dispatcher_.enter();
}

}  // namespace TR
