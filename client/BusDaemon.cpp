#include "client/BusDaemon.h"

#include <dbus/dbus.h>

#include <algorithm>
#include <deque>
#include <iterator>
#include <utility>

namespace client {

namespace {

constexpr char kService[] = "com.kelm.stb.TR";
constexpr char kObject[] = "/com/kelm/stb/TR";
// Enough that neither side waits for the other, few enough that the answers need little room.
constexpr std::size_t kMostInFlight = 64;

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

[[noreturn]] void fail(const std::string& name, const std::string& text) {
    const auto loss = std::find_if(std::begin(kLosses), std::end(kLosses),
                                   [&](const Loss& row) { return name == row.error; });
    if (name == DBUS_ERROR_DISCONNECTED) throw Unreachable(loss->reason, loss->advice);
    if (loss != std::end(kLosses)) throw NoDaemon(loss->reason, loss->advice);
    throw Refused(text + " (" + name + ")");
}

struct Drop {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
    void operator()(DBusPendingCall* call) const {
        dbus_pending_call_cancel(call);
        dbus_pending_call_unref(call);
    }
    void operator()(DBusConnection* connection) const {
        dbus_connection_close(connection);
        dbus_connection_unref(connection);
    }
};
using Message = std::unique_ptr<DBusMessage, Drop>;
using Pending = std::unique_ptr<DBusPendingCall, Drop>;
using Connection = std::unique_ptr<DBusConnection, Drop>;
using Clock = std::chrono::steady_clock;

std::string stringAt(DBusMessageIter& position) {
    const char* text = "";
    if (dbus_message_iter_get_arg_type(&position) == DBUS_TYPE_STRING)
        dbus_message_iter_get_basic(&position, &text);
    return text;
}

std::string textOf(const Message& reply) {
    DBusMessageIter position;
    return dbus_message_iter_init(reply.get(), &position) == 0 ? "" : stringAt(position);
}

std::vector<std::string> listOf(const Message& reply) {
    std::vector<std::string> list;
    DBusMessageIter position, element;
    if (dbus_message_iter_init(reply.get(), &position) == 0 ||
        dbus_message_iter_get_arg_type(&position) != DBUS_TYPE_ARRAY)
        return list;
    list.reserve(static_cast<std::size_t>(dbus_message_iter_get_element_count(&position)));
    dbus_message_iter_recurse(&position, &element);
    for (; dbus_message_iter_get_arg_type(&element) != DBUS_TYPE_INVALID;
         dbus_message_iter_next(&element))
        list.push_back(stringAt(element));
    return list;
}

Message checked(Message reply) {
    if (dbus_message_get_type(reply.get()) == DBUS_MESSAGE_TYPE_ERROR)
        fail(dbus_message_get_error_name(reply.get()), textOf(reply));
    return reply;
}

Message callOf(const char* member, std::initializer_list<const std::string*> arguments) {
    Message call(dbus_message_new_method_call(kService, kObject, kService, member));
    // Nobody answers in the name of a daemon that is not there.
    dbus_message_set_auto_start(call.get(), FALSE);
    for (const std::string* argument : arguments) {
        const char* const text = argument->c_str();
        // libdbus ends the process over such a text; it has no NUL either.
        if (dbus_validate_utf8(text, nullptr) == FALSE || argument->find('\0') != std::string::npos)
            throw Refused("The text is not valid UTF-8, and the bus carries nothing else");
        dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    }
    return call;
}

// libdbus starts a bus for such an address, and nobody would stop it.
bool asksToBeLaunched(const std::string& address) {
    DBusAddressEntry** entries = nullptr;
    int count = 0;
    if (dbus_parse_address(address.c_str(), &entries, &count, nullptr) == FALSE) return false;
    const bool asks = std::any_of(entries, entries + count, [](DBusAddressEntry* entry) {
        return dbus_address_entry_get_method(entry) == std::string("autolaunch");
    });
    dbus_address_entries_free(entries);
    return asks;
}

Connection open(const std::string& address) {
    if (address.empty()) throw Unreachable("there is no bus: its address is not set", kAdviceNoBus);
    if (asksToBeLaunched(address))
        throw Unreachable("there is no bus: no bus is started for autolaunch:", kAdviceNoBus);
    DBusError error = DBUS_ERROR_INIT;
    Connection connection(dbus_connection_open_private(address.c_str(), &error));
    if (connection == nullptr) {
        const std::string reason = error.message;
        dbus_error_free(&error);
        throw Unreachable("there is no bus: " + reason, kAdviceNoBus);
    }
    dbus_connection_set_exit_on_disconnect(connection.get(), FALSE);
    return connection;
}

const char* memberFor(Daemon::Question question) {
    constexpr const char* kMembers[] = {"get_value", "getWritable", "getForcedInform"};
    return kMembers[static_cast<int>(question)];
}

}  // namespace

struct BusDaemon::Connected {
    Connected(const std::string& address, std::chrono::milliseconds time)
        : connection(open(address)) {
        setTimeLeft(time);
        sayHello();
        hasDeadline = false;
    }

    void setTimeLeft(std::chrono::milliseconds time) {
        deadline = Clock::now() + time;
        hasDeadline = true;
    }

    // libdbus's own way to register waits for a silent bus longer than the caller may.
    void sayHello() {
        const Message hello(dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                         DBUS_INTERFACE_DBUS, "Hello"));
        try {
            const std::string name = textOf(await(send(hello)));
            dbus_bus_set_unique_name(connection.get(), name.c_str());
        } catch (const std::runtime_error& error) {
            throw Unreachable(std::string("there is no bus: ") + error.what(), kAdviceNoBus);
        }
    }

    Pending send(const Message& call) {
        DBusPendingCall* pending = nullptr;
        // The deadline is kept here: a time-out of libdbus counts from the wait on.
        if (dbus_connection_send_with_reply(connection.get(), call.get(), &pending,
                                            DBUS_TIMEOUT_INFINITE) == FALSE)
            fail(DBUS_ERROR_NO_MEMORY, "out of memory");
        if (pending == nullptr) fail(DBUS_ERROR_DISCONNECTED, "");
        return Pending(pending);
    }

    Message await(const Pending& pending) {
        const auto end = hasDeadline ? deadline : Clock::now() + timePerCall;
        while (dbus_pending_call_get_completed(pending.get()) == FALSE) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
            if (left <= 0) fail(DBUS_ERROR_TIMEOUT, "");
            if (dbus_connection_read_write_dispatch(connection.get(), static_cast<int>(left)) ==
                    FALSE &&
                dbus_pending_call_get_completed(pending.get()) == FALSE)
                fail(DBUS_ERROR_DISCONNECTED, "");
        }
        return checked(Message(dbus_pending_call_steal_reply(pending.get())));
    }

    Message call(const char* member, std::initializer_list<const std::string*> arguments) {
        return await(send(callOf(member, arguments)));
    }

    std::optional<std::string> answer(const Pending& pending) {
        try {
            return textOf(await(pending));
        } catch (const Refused&) {
            return std::nullopt;
        }
    }

    const Connection connection;
    std::chrono::milliseconds timePerCall{kTimePerCall};
    Clock::time_point deadline;
    bool hasDeadline = false;
};

BusDaemon::BusDaemon(const std::string& busAddress, std::chrono::milliseconds timeToConnect)
    : connected_(std::make_unique<Connected>(busAddress, timeToConnect)) {}

BusDaemon::~BusDaemon() = default;

void BusDaemon::setTimeLeft(std::chrono::milliseconds time) {
    connected_->setTimeLeft(time);
}

void BusDaemon::setTimePerCall(std::chrono::milliseconds time) {
    connected_->timePerCall = time;
}

bool BusDaemon::isConnected() const {
    return dbus_connection_get_is_connected(connected_->connection.get()) != FALSE;
}

std::vector<std::string> BusDaemon::addresses() {
    return listOf(connected_->call("listAddresses", {}));
}

std::vector<std::string> BusDaemon::parameters() {
    return listOf(connected_->call("listParametersOnly", {}));
}

std::string BusDaemon::value(const std::string& address) {
    return textOf(connected_->call("get_value", {&address}));
}

bool BusDaemon::isWritable(const std::string& address) {
    return textOf(connected_->call("getWritable", {&address})) == "1";
}

bool BusDaemon::isForcedInform(const std::string& address) {
    return textOf(connected_->call("getForcedInform", {&address})) == "1";
}

void BusDaemon::set(const std::string& address, const std::string& value) {
    connected_->call("set", {&address, &value});
}

std::string BusDaemon::changes() {
    return textOf(connected_->call("checkValueChange", {}));
}

void BusDaemon::updateNotifTable() {
    connected_->call("updateNotifTable", {});
}

void BusDaemon::ask(Question question, const Addresses& addresses, const Answer& answer) {
    std::deque<Pending> inFlight;
    std::size_t answered = 0;
    for (std::size_t sent = 0; answered < addresses.size(); ++answered) {
        for (; sent < addresses.size() && inFlight.size() < kMostInFlight; ++sent)
            inFlight.push_back(connected_->send(callOf(memberFor(question), {addresses[sent]})));
        const Pending pending = std::move(inFlight.front());
        inFlight.pop_front();
        answer(*addresses[answered], connected_->answer(pending));
    }
}

}  // namespace client
