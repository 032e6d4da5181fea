#include "box/client/TrClient.h"

#include <utility>

namespace {

constexpr char kInterface[] = "com.kelm.stb.TR";
constexpr char kObjectPath[] = "/com/kelm/stb/TR";

/// libdbus's error record, freed on every path.
class Error {
  public:
    Error() { dbus_error_init(&error_); }
    ~Error() { dbus_error_free(&error_); }
    Error(const Error&) = delete;
    Error& operator=(const Error&) = delete;

    DBusError* get() { return &error_; }
    TrReply reply() const {
        TrReply failed;
        failed.errorName = error_.name == nullptr ? "" : error_.name;
        failed.errorText = error_.message == nullptr ? "" : error_.message;
        return failed;
    }

  private:
    DBusError error_{};
};

DBusConnection* open(const std::string& busAddress) {
    Error error;
    DBusConnection* connection = dbus_connection_open_private(busAddress.c_str(), error.get());
    if (connection == nullptr) return nullptr;
    dbus_connection_set_exit_on_disconnect(connection, FALSE);
    if (dbus_bus_register(connection, error.get()) != FALSE) return connection;
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
    return nullptr;
}

std::string stringAt(DBusMessageIter& position) {
    const char* text = "";
    dbus_message_iter_get_basic(&position, &text);
    return text;
}

TrReply read(DBusMessage* message) {
    TrReply reply;
    reply.ok = true;
    DBusMessageIter position;
    dbus_message_iter_init(message, &position);
    if (dbus_message_iter_get_arg_type(&position) == DBUS_TYPE_STRING) reply.text = stringAt(position);
    if (dbus_message_iter_get_arg_type(&position) != DBUS_TYPE_ARRAY) return reply;
    DBusMessageIter element;
    dbus_message_iter_recurse(&position, &element);
    while (dbus_message_iter_get_arg_type(&element) == DBUS_TYPE_STRING) {
        reply.list.push_back(stringAt(element));
        dbus_message_iter_next(&element);
    }
    return reply;
}

TrReply unreachable() {
    TrReply reply;
    reply.errorName = DBUS_ERROR_DISCONNECTED;
    reply.errorText = "The bus cannot be reached";
    return reply;
}

}  // namespace

void TrClient::CloseConnection::operator()(DBusConnection* connection) const {
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
}

void TrClient::CancelPending::operator()(DBusPendingCall* pending) const {
    dbus_pending_call_cancel(pending);
    dbus_pending_call_unref(pending);
}

TrClient::TrClient(const std::string& busAddress, std::string service)
    : service_(std::move(service)), connection_(open(busAddress)) {}

TrClient::Message TrClient::build(const TrCall& call) const {
    Message message(dbus_message_new_method_call(service_.c_str(), kObjectPath, call.interface,
                                                 call.member.c_str()));
    DBusMessageIter position;
    dbus_message_iter_init_append(message.get(), &position);
    for (const std::string& argument : call.arguments) {
        const char* text = argument.c_str();
        dbus_message_iter_append_basic(&position, DBUS_TYPE_STRING, &text);
    }
    return message;
}

TrReply TrClient::call(const TrCall& call) {
    if (!connection_) return unreachable();
    Error error;
    const Message reply(dbus_connection_send_with_reply_and_block(
        connection_.get(), build(call).get(), kTimeoutMilliseconds, error.get()));
    return reply ? read(reply.get()) : error.reply();
}

TrClient::Pending TrClient::sendGetValue(const std::string& address) {
    DBusPendingCall* pending = nullptr;
    if (!connection_) return nullptr;
    dbus_connection_send_with_reply(connection_.get(), build({kInterface, "get_value", {address}}).get(),
                                    &pending, kTimeoutMilliseconds);
    dbus_connection_flush(connection_.get());
    return Pending(pending);
}

TrReply TrClient::own(const char* member, const std::vector<std::string>& arguments) {
    return call({kInterface, member, arguments});
}

TrReply TrClient::set(const std::string& address, const std::string& value) {
    return own("set", {address, value});
}

TrReply TrClient::getValue(const std::string& address) { return own("get_value", {address}); }

TrReply TrClient::getWritable(const std::string& address) { return own("getWritable", {address}); }

TrReply TrClient::getForcedInform(const std::string& address) {
    return own("getForcedInform", {address});
}

TrReply TrClient::listAddresses() { return own("listAddresses"); }

TrReply TrClient::listParametersOnly() { return own("listParametersOnly"); }

TrReply TrClient::updateNotifTable() { return own("updateNotifTable"); }

TrReply TrClient::checkValueChange() { return own("checkValueChange"); }
