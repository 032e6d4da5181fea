#include "client/BusDaemon.h"

#include <dbus-c++/dbus.h>
#include <dbus/dbus.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include <TR_proxy.h>

namespace client {

namespace {

constexpr char kService[] = "com.kelm.stb.TR";
constexpr char kObject[] = "/com/kelm/stb/TR";
// The daemon answers between two steps of its cycle; a slow command may delay it.
constexpr int kTimeoutMilliseconds = 30'000;

constexpr char kAdviceNoBus[] =
    "Set DBUS_SESSION_BUS_ADDRESS to the address of the daemon's session bus, or give it with\n"
    "--bus ADDRESS.";
constexpr char kAdviceNoDaemon[] =
    "Start kelm-trd with DBUS_SESSION_BUS_ADDRESS set to this bus, or name the bus that it is on\n"
    "with --bus ADDRESS.";
constexpr char kAdviceNoAnswer[] =
    "It answers when the command that it waits for ends; its log and `ps` tell which one that is.";

struct Loss {
    const char* error;
    const char* reason;
    const char* advice;
};

// The errors that come from the bus or from libdbus, not from the daemon.
constexpr Loss kLosses[] = {
    {DBUS_ERROR_SERVICE_UNKNOWN, "there is no kelm-trd on this bus", kAdviceNoDaemon},
    {DBUS_ERROR_NAME_HAS_NO_OWNER, "there is no kelm-trd on this bus", kAdviceNoDaemon},
    {DBUS_ERROR_NO_REPLY, "kelm-trd does not answer, or it has just ended", kAdviceNoAnswer},
    {DBUS_ERROR_TIMEOUT, "kelm-trd does not answer", kAdviceNoAnswer},
    {DBUS_ERROR_TIMED_OUT, "kelm-trd does not answer", kAdviceNoAnswer},
    {DBUS_ERROR_DISCONNECTED, "the bus is gone", kAdviceNoBus},
};

[[noreturn]] void translate(const DBus::Error& error) {
    const std::string name = error.name() != nullptr ? error.name() : "";
    const std::string text = error.message() != nullptr ? error.message() : "";
    const auto loss = std::find_if(std::begin(kLosses), std::end(kLosses),
                                   [&](const Loss& row) { return name == row.error; });
    if (name == DBUS_ERROR_DISCONNECTED) throw Unreachable(loss->reason, loss->advice);
    if (loss != std::end(kLosses)) throw NoDaemon(loss->reason, loss->advice);
    throw Refused(text + " (" + name + ")");
}

template <typename Call>
auto translated(Call call) -> decltype(call()) {
    try {
        return call();
    } catch (const DBus::Error& error) {
        translate(error);
    }
}

class Proxy : public com::kelm::stb::TR_proxy, public DBus::ObjectProxy {
  public:
    explicit Proxy(DBus::Connection& connection)
        : DBus::ObjectProxy(connection, kObject, kService) {
        set_timeout(kTimeoutMilliseconds);
    }
};

// The binding makes no connection without a dispatcher; calls that block never enter it.
DBus::Connection connect(DBus::BusDispatcher& dispatcher, const std::string& address) {
    DBus::default_dispatcher = &dispatcher;
    // One thread; NOLINTNEXTLINE(concurrency-mt-unsafe)
    if (!address.empty()) setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    try {
        DBus::Connection connection = DBus::Connection::SessionBus();
        connection.exit_on_disconnect(false);
        return connection;
    } catch (const DBus::Error& error) {
        throw Unreachable(std::string("there is no bus: ") + error.message(), kAdviceNoBus);
    }
}

}  // namespace

struct BusDaemon::Connected {
    explicit Connected(const std::string& address)
        : connection(connect(dispatcher, address)), proxy(connection) {}
    ~Connected() { connection.disconnect(); }

    DBus::BusDispatcher dispatcher;
    DBus::Connection connection;
    Proxy proxy;
};

BusDaemon::BusDaemon(const std::string& busAddress)
    : connected_(translated([&] { return std::make_unique<Connected>(busAddress); })) {}

BusDaemon::~BusDaemon() = default;

std::vector<std::string> BusDaemon::addresses() {
    return translated([&] { return connected_->proxy.listAddresses(); });
}

std::vector<std::string> BusDaemon::parameters() {
    return translated([&] { return connected_->proxy.listParametersOnly(); });
}

std::string BusDaemon::value(const std::string& address) {
    return translated([&] { return connected_->proxy.get_value(address); });
}

bool BusDaemon::isWritable(const std::string& address) {
    return translated([&] { return connected_->proxy.getWritable(address); }) == "1";
}

bool BusDaemon::isForcedInform(const std::string& address) {
    return translated([&] { return connected_->proxy.getForcedInform(address); }) == "1";
}

void BusDaemon::set(const std::string& address, const std::string& value) {
    // libdbus ends the process over such a text.
    if (dbus_validate_utf8(value.c_str(), nullptr) == FALSE)
        throw Refused("The value is not valid UTF-8, and the bus carries nothing else");
    translated([&] { connected_->proxy.set(address, value); });
}

std::string BusDaemon::changes() {
    return translated([&] { return connected_->proxy.checkValueChange(); });
}

}  // namespace client
