#include "tests/support/TrClient.h"

#include <utility>

namespace {

TrReply failed(const char* name, const char* text) {
    TrReply reply;
    reply.errorName = name == nullptr ? "" : name;
    reply.errorText = text == nullptr ? "" : text;
    return reply;
}

/// libdbus's error record, freed on every path.
class Error {
  public:
    Error() { dbus_error_init(&error_); }
    ~Error() { dbus_error_free(&error_); }
    Error(const Error&) = delete;
    Error& operator=(const Error&) = delete;

    DBusError* get() { return &error_; }
    TrReply reply() const { return failed(error_.name, error_.message); }

  private:
    DBusError error_{};
};

std::string stringAt(DBusMessageIter& position) {
    const char* text = "";
    dbus_message_iter_get_basic(&position, &text);
    return text;
}

TrReply read(DBusMessage* message) {
    TrReply reply;
    reply.ok = true;
    reply.signature = dbus_message_get_signature(message);
    DBusMessageIter position;
    dbus_message_iter_init(message, &position);
    const int type = dbus_message_iter_get_arg_type(&position);
    if (type == DBUS_TYPE_STRING) reply.text = stringAt(position);
    if (type != DBUS_TYPE_ARRAY) return reply;
    DBusMessageIter element;
    dbus_message_iter_recurse(&position, &element);
    while (dbus_message_iter_get_arg_type(&element) == DBUS_TYPE_STRING) {
        reply.list.push_back(stringAt(element));
        dbus_message_iter_next(&element);
    }
    return reply;
}

void append(DBusMessageIter& position, const std::string& argument) {
    const char* text = argument.c_str();
    dbus_message_iter_append_basic(&position, DBUS_TYPE_STRING, &text);
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
    : service_(std::move(service)) {
    // Tests have clients in several threads.
    dbus_threads_init_default();
    open(busAddress);
}

void TrClient::open(const std::string& busAddress) {
    Error error;
    connection_.reset(dbus_connection_open_private(busAddress.c_str(), error.get()));
    if (connection_ != nullptr) {
        dbus_connection_set_exit_on_disconnect(connection_.get(), FALSE);
        if (dbus_bus_register(connection_.get(), error.get()) != FALSE) return;
        connection_.reset();
    }
    connectError_ = error.reply();
}

bool TrClient::connected() const {
    return connection_ != nullptr && dbus_connection_get_is_connected(connection_.get()) != FALSE;
}

TrReply TrClient::unreachable() const {
    if (!connectError_.errorName.empty()) return connectError_;
    return failed(DBUS_ERROR_DISCONNECTED, "The bus cannot be reached");
}

// Null when libdbus would abort on a text, or on a header.
TrClient::Message TrClient::build(const TrCall& call) const {
    Message message(dbus_message_new_method_call(service_.c_str(), call.path.c_str(),
                                                 call.interface, call.member.c_str()));
    if (message == nullptr) return message;
    DBusMessageIter position;
    dbus_message_iter_init_append(message.get(), &position);
    for (const std::string& argument : call.arguments) {
        if (dbus_validate_utf8(argument.c_str(), nullptr) == FALSE) return nullptr;
        append(position, argument);
    }
    if (call.append) call.append(position);
    return message;
}

TrClient::Message TrClient::transact(DBusMessage* message, TrReply& failure) {
    if (!connected()) {
        failure = unreachable();
        return nullptr;
    }
    if (message == nullptr) {
        failure = failed(DBUS_ERROR_INVALID_ARGS, "libdbus does not take such a call");
        return nullptr;
    }
    Error error;
    Message reply(dbus_connection_send_with_reply_and_block(
        connection_.get(), message, static_cast<int>(timeout_.count()), error.get()));
    if (reply == nullptr) failure = error.reply();
    // Signals pile up on a connection that nobody dispatches.
    while (const Message other{dbus_connection_pop_message(connection_.get())})
        if (dbus_message_get_reply_serial(other.get()) != 0) ++strayReplies_;
    return reply;
}

TrReply TrClient::call(const TrCall& call) {
    TrReply failure;
    const Message reply = transact(build(call).get(), failure);
    return reply ? read(reply.get()) : failure;
}

TrClient::Pending TrClient::send(const TrCall& call) {
    const Message message = build(call);
    if (!connected() || message == nullptr) return nullptr;
    DBusPendingCall* pending = nullptr;
    dbus_connection_send_with_reply(connection_.get(), message.get(), &pending,
                                    static_cast<int>(timeout_.count()));
    dbus_connection_flush(connection_.get());
    return Pending(pending);
}

TrClient::Pending TrClient::sendGetValue(const std::string& address) {
    return send({kInterface, "get_value", {address}});
}

TrReply TrClient::wait(const Pending& call) {
    dbus_pending_call_block(call.get());
    const Message message(dbus_pending_call_steal_reply(call.get()));
    TrReply reply = read(message.get());
    reply.ok = dbus_message_get_type(message.get()) != DBUS_MESSAGE_TYPE_ERROR;
    if (!reply.ok) reply.errorName = dbus_message_get_error_name(message.get());
    return reply;
}

bool TrClient::post(const TrCall& call) {
    const Message message = build(call);
    if (!connected() || message == nullptr) return false;
    dbus_message_set_no_reply(message.get(), TRUE);
    const bool isSent = dbus_connection_send(connection_.get(), message.get(), nullptr) != FALSE;
    dbus_connection_flush(connection_.get());
    return isSent;
}

TrClient::Message TrClient::askBus(const char* member) {
    const Message message(dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                       DBUS_INTERFACE_DBUS, member));
    DBusMessageIter position;
    dbus_message_iter_init_append(message.get(), &position);
    append(position, service_);
    TrReply failure;
    return transact(message.get(), failure);
}

std::string TrClient::owner() {
    const Message reply = askBus("GetNameOwner");
    return reply ? read(reply.get()).text : std::string();
}

std::uint32_t TrClient::ownerPid() {
    const Message reply = askBus("GetConnectionUnixProcessID");
    dbus_uint32_t pid = 0;
    if (reply)
        dbus_message_get_args(reply.get(), nullptr, DBUS_TYPE_UINT32, &pid, DBUS_TYPE_INVALID);
    return pid;
}

TrReply TrClient::own(const char* member, const std::vector<std::string>& arguments) {
    return call({kInterface, member, arguments});
}

TrReply TrClient::set(const std::string& address, const std::string& value) {
    return own("set", {address, value});
}

TrReply TrClient::getValue(const std::string& address) {
    return own("get_value", {address});
}

TrReply TrClient::getWritable(const std::string& address) {
    return own("getWritable", {address});
}

TrReply TrClient::getForcedInform(const std::string& address) {
    return own("getForcedInform", {address});
}

TrReply TrClient::listAddresses() {
    return own("listAddresses");
}

TrReply TrClient::listParametersOnly() {
    return own("listParametersOnly");
}

TrReply TrClient::updateNotifTable() {
    return own("updateNotifTable");
}

TrReply TrClient::checkValueChange() {
    return own("checkValueChange");
}

TrReply TrClient::introspect() {
    return call({DBUS_INTERFACE_INTROSPECTABLE, "Introspect"});
}
