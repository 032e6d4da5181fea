#include "tests/box/RandomMessages.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr const char* kMembers[] = {"set", "get_value", "getWritable", "getForcedInform"};
// Lists are long, the others read a file or wait for the cycle.
constexpr const char* kRareMembers[] = {"listAddresses", "listParametersOnly", "updateNotifTable",
                                        "checkValueChange"};
constexpr const char* kOddMembers[] = {"Introspect", "Ping",   "nonsense",
                                       "Get",        "GetAll", "GetMachineId"};
constexpr const char* kOddInterfaces[] = {DBUS_INTERFACE_INTROSPECTABLE, DBUS_INTERFACE_PEER,
                                          DBUS_INTERFACE_PROPERTIES, "a.b"};
constexpr const char* kPaths[] = {"/com/kelm/stb/TR", "/", "/com/kelm", "/com/kelm/stb/TR/x"};
constexpr int kTypes[] = {DBUS_MESSAGE_TYPE_METHOD_CALL, DBUS_MESSAGE_TYPE_METHOD_CALL,
                          DBUS_MESSAGE_TYPE_METHOD_CALL, DBUS_MESSAGE_TYPE_METHOD_CALL,
                          DBUS_MESSAGE_TYPE_METHOD_CALL, DBUS_MESSAGE_TYPE_METHOD_RETURN,
                          DBUS_MESSAGE_TYPE_ERROR,       DBUS_MESSAGE_TYPE_SIGNAL};
constexpr int kBasicTypes[] = {
    DBUS_TYPE_BYTE,   DBUS_TYPE_BOOLEAN,     DBUS_TYPE_INT16,  DBUS_TYPE_UINT16, DBUS_TYPE_INT32,
    DBUS_TYPE_UINT32, DBUS_TYPE_INT64,       DBUS_TYPE_UINT64, DBUS_TYPE_DOUBLE, DBUS_TYPE_STRING,
    DBUS_TYPE_STRING, DBUS_TYPE_OBJECT_PATH, DBUS_TYPE_UNIX_FD};
constexpr int kDeepestStructure = 20;     // D-Bus allows 32 levels in a signature
constexpr unsigned kDeepestVariant = 50;  // and 64 in a message

}  // namespace

RandomMessages::RandomMessages(std::string busAddress, std::vector<std::string> readOnlyAddresses,
                               std::uint32_t seed)
    : busAddress_(std::move(busAddress)), readOnly_(std::move(readOnlyAddresses)), random_(seed) {}

RandomMessages::Connection RandomMessages::open() const {
    Connection connection(dbus_connection_open_private(busAddress_.c_str(), nullptr));
    if (connection == nullptr) throw std::runtime_error("no bus");
    dbus_connection_set_exit_on_disconnect(connection.get(), FALSE);
    if (dbus_bus_register(connection.get(), nullptr) == FALSE) throw std::runtime_error("no bus");
    return connection;
}

unsigned RandomMessages::number(unsigned below) {
    return std::uniform_int_distribution<unsigned>(0, below - 1)(random_);
}

void RandomMessages::sendOne() {
    constexpr unsigned kDamagedOnOneConnection = 20;
    const Message message = make();
    if (oneIn(4)) {
        // A wrong length makes the bus take the next messages for the rest of this one.
        if (damagedCount_++ % kDamagedOnOneConnection == 0) damaged_.reset();
        sendDamaged(message.get());
        return;
    }
    if (whole_ == nullptr || dbus_connection_get_is_connected(whole_.get()) == FALSE)
        whole_ = open();
    dbus_connection_send(whole_.get(), message.get(), nullptr);
}

void RandomMessages::drain() {
    for (DBusConnection* connection : {whole_.get(), damaged_.get()}) {
        if (connection == nullptr) continue;
        dbus_connection_read_write(connection, 0);
        while (const Message other{dbus_connection_pop_message(connection)}) {
        }
    }
}

RandomMessages::Message RandomMessages::make() {
    Message message(dbus_message_new(oneOf(kTypes)));
    address(message.get());
    appendArguments(message.get());
    return message;
}

void RandomMessages::address(DBusMessage* message) {
    dbus_message_set_destination(message, TrClient::kService);
    dbus_message_set_path(message, oneIn(8) ? oneOf(kPaths) : kPaths[0]);
    const char* member = oneIn(8) ? oneOf(kOddMembers) : oneOf(kMembers);
    dbus_message_set_member(message, oneIn(50) ? oneOf(kRareMembers) : member);
    const bool isSignal = dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_SIGNAL;
    const char* interface = oneIn(8) ? oneOf(kOddInterfaces) : TrClient::kInterface;
    // The bus closes a connection that sends something from the local interface.
    if (oneIn(5000)) interface = DBUS_INTERFACE_LOCAL;
    if (isSignal || !oneIn(4)) dbus_message_set_interface(message, interface);
    const bool isReply = dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_RETURN ||
                         dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_ERROR;
    if (isReply || oneIn(20)) dbus_message_set_reply_serial(message, 1 + number(1000));
    if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_ERROR)
        dbus_message_set_error_name(message, "com.kelm.Error");
    dbus_message_set_no_reply(message, oneIn(3) ? TRUE : FALSE);
    dbus_message_set_auto_start(message, oneIn(2) ? TRUE : FALSE);
}

// What the member wants, in most messages, and then anything.
void RandomMessages::appendArguments(DBusMessage* message) {
    DBusMessageIter position;
    dbus_message_iter_init_append(message, &position);
    for (unsigned texts = oneIn(8) ? 0 : 1 + number(2); texts > 0; --texts)
        appendBasic(position, DBUS_TYPE_STRING);
    for (unsigned others = oneIn(2) ? 0 : number(4); others > 0; --others) append(position, 0);
}

void RandomMessages::append(DBusMessageIter& position, int depth) {
    if (depth < kDeepestStructure && oneIn(depth < 3 ? 3 : 10))
        appendContainer(position, depth);
    else
        appendBasic(position, oneOf(kBasicTypes));
}

void RandomMessages::appendBasic(DBusMessageIter& position, int type) {
    if (type == DBUS_TYPE_STRING || type == DBUS_TYPE_OBJECT_PATH) {
        const std::string value = type == DBUS_TYPE_STRING ? text() : oneOf(kPaths);
        const char* pointer = value.c_str();
        dbus_message_iter_append_basic(&position, type, &pointer);
        return;
    }
    DBusBasicValue value{};
    value.u64 = random_();
    if (type == DBUS_TYPE_BOOLEAN) value.bool_val &= 1;
    if (type == DBUS_TYPE_UNIX_FD) value.fd = STDERR_FILENO;
    dbus_message_iter_append_basic(&position, type, &value);
}

void RandomMessages::appendContainer(DBusMessageIter& position, int depth) {
    const unsigned kind = number(3);
    if (kind == 0) {
        appendVariant(position, oneIn(4) ? number(kDeepestVariant) : number(3));
        return;
    }
    DBusMessageIter inner;
    if (kind == 1) {
        dbus_message_iter_open_container(&position, DBUS_TYPE_STRUCT, nullptr, &inner);
        for (unsigned members = 1 + number(3); members > 0; --members) append(inner, depth + 1);
    } else {
        dbus_message_iter_open_container(&position, DBUS_TYPE_ARRAY, "s", &inner);
        for (unsigned left = number(oneIn(50) ? 20'000 : 5); left > 0; --left)
            appendBasic(inner, DBUS_TYPE_STRING);
    }
    dbus_message_iter_close_container(&position, &inner);
}

void RandomMessages::appendVariant(DBusMessageIter& position, unsigned levels) {
    DBusMessageIter inner;
    dbus_message_iter_open_container(&position, DBUS_TYPE_VARIANT, levels > 0 ? "v" : "s", &inner);
    if (levels > 0)
        appendVariant(inner, levels - 1);
    else
        appendBasic(inner, DBUS_TYPE_STRING);
    dbus_message_iter_close_container(&position, &inner);
}

std::string RandomMessages::text() {
    constexpr const char* kPieces[] = {"Device.", "DeviceInfo.", ".",        "%s%n",
                                       "\"",      "$(reboot)",   "\xC3\xA9", "\xF0\x9F\x93\xBA",
                                       " ",       "\n",          "1",        "-9"};
    if (oneIn(2)) return oneOf(readOnly_);
    std::string made;
    for (unsigned left = number(oneIn(100) ? 2000 : 6); left > 0; --left) made += oneOf(kPieces);
    return made;
}

void RandomMessages::sendDamaged(DBusMessage* message) {
    if (dbus_message_contains_unix_fds(message) != FALSE) return;
    if (damaged_ == nullptr || dbus_connection_get_is_connected(damaged_.get()) == FALSE)
        damaged_ = open();
    char* bytes = nullptr;
    int length = 0;
    dbus_message_set_serial(message, 1 + number(1000));
    if (dbus_message_marshal(message, &bytes, &length) == FALSE) return;
    for (unsigned changes = 1 + number(3); changes > 0; --changes) {
        // In the header more often than not, where there is more to spoil.
        const auto size = static_cast<unsigned>(length);
        const unsigned at = number(oneIn(3) ? size : std::min(size, 200U));
        bytes[at] = static_cast<char>(oneIn(2) ? bytes[at] ^ (1 << number(8)) : int(number(256)));
    }
    int socket = -1;
    dbus_connection_get_socket(damaged_.get(), &socket);
    // Part of it, when the bus does not take it all.
    ::send(socket, bytes, static_cast<std::size_t>(length), MSG_DONTWAIT | MSG_NOSIGNAL);
    dbus_free(bytes);
}
