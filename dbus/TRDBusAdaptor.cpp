#include "dbus/TRDBusAdaptor.h"

#include "dbus/Utf8.h"
#include "model/Storage.h"
#include "stb/src/common/Commands.h"
#include "stb/src/common/Files.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

namespace {

constexpr char kUciSet[] = "/usr/bin/uci -q set ";

// A reply's header: 16 fixed bytes, the reply's serial, its signature, and two bus names of at most
// 14 bytes.
constexpr std::uint64_t kHeaderBytes = 128;

void checkSize(std::uint64_t bodyBytes) {
    if (kHeaderBytes + bodyBytes > TRDBusAdaptor::kLargestReplyBytes)
        throw DBus::Error(DBUS_ERROR_LIMITS_EXCEEDED, "The reply is larger than the bus carries");
}

/// The text as the bus carries it. A repair only makes it longer: what is too large already need
/// not be repaired first.
std::string carried(std::string text) {
    checkSize(text.size());
    text = TR::toValidUtf8(std::move(text));
    checkSize(text.size());
    return text;
}

std::vector<std::string> carried(std::vector<TR::Address> addresses) {
    std::vector<std::string> list;
    list.reserve(addresses.size());
    std::uint64_t bytes = 0;
    for (TR::Address& address : addresses) {
        list.push_back(TR::toValidUtf8(std::move(address).get()));
        // A string is its length in four bytes, itself and a NUL, from a multiple of four on.
        bytes += (std::uint64_t{list.back().size()} + 4 + 1 + 3) & ~3U;
    }
    checkSize(bytes);
    return list;
}

/// Strings in a message, or elements of its list.
std::size_t stringsIn(DBusMessage* message) {
    const std::string_view signature = dbus_message_get_signature(message);
    if (signature != "as") return signature.size();  // "s" or nothing
    DBusMessageIter position;
    dbus_message_iter_init(message, &position);
    return static_cast<std::size_t>(dbus_message_iter_get_element_count(&position));
}

/// The interface is optional in a call.
const char* interfaceOf(const DBus::CallMessage& call) {
    if (call.interface() != nullptr) return call.interface();
    const bool isStandard = std::string_view(call.member()) == "Introspect";
    return isStandard ? DBUS_INTERFACE_INTROSPECTABLE : TRDBusAdaptor::kInterface;
}

}  // namespace

TRDBusAdaptor::TRDBusAdaptor(DBus::Connection& connection, TR::Storage* storage)
    : DBus::ObjectAdaptor(connection, kObjectPath), storage_(storage) {}

bool TRDBusAdaptor::hasEffect(DBusMessage* call) {
    constexpr std::string_view kMembers[] = {"set", "getWritable", "getForcedInform",
                                             "updateNotifTable"};
    const char* const interface = dbus_message_get_interface(call);
    return dbus_message_has_path(call, kObjectPath) != FALSE &&
           (interface == nullptr || std::string_view(interface) == kInterface) &&
           std::count(std::begin(kMembers), std::end(kMembers), dbus_message_get_member(call)) > 0;
}

bool TRDBusAdaptor::handle_message(const DBus::Message& message) {
    if (message.type() != DBUS_MESSAGE_TYPE_METHOD_CALL) return false;
    const auto call = static_cast<const DBus::CallMessage&>(message);
    DBus::InterfaceAdaptor* const interface = find_interface(interfaceOf(call));
    if (interface == nullptr) return false;
    const TR::Libdbus::OwnedMessage reply = replyTo(call, *interface);
    if (dbus_message_get_no_reply(TR::Libdbus::handleOf(call)) != FALSE) return true;
    // A caller must not wait for ever: from a closed connection the bus answers for us.
    if (reply == nullptr ||
        dbus_connection_send(TR::Libdbus::handleOf(conn()), reply.get(), nullptr) == FALSE)
        conn().disconnect();
    return true;
}

// The binding aborts when memory for an error message is short, so libdbus makes these.
TR::Libdbus::OwnedMessage TRDBusAdaptor::replyTo(const DBus::CallMessage& call,
                                                 DBus::InterfaceAdaptor& interface) {
    const auto error = [&](const char* name, const char* text) {
        return TR::Libdbus::OwnedMessage(
            dbus_message_new_error(TR::Libdbus::handleOf(call), name, text));
    };
    try {
        replyStrings_ = 1;  // that of a text or an error; the other operations set their number
        errno = 0;
        const DBus::Message reply = interface.dispatch_method(call);
        DBusMessage* const handle = TR::Libdbus::handleOf(reply);
        // The binding drops the result of an append. One that fails for lack of memory sets ENOMEM;
        // counting after every call would cost 5 % of it.
        if (errno == 0 || stringsIn(handle) == replyStrings_)
            return TR::Libdbus::OwnedMessage(dbus_message_ref(handle));
    } catch (const DBus::Error& failure) {
        return error(failure.name(), failure.message());
    } catch (const std::bad_alloc&) {
        // as for a reply that lacks some of its strings
    } catch (const std::exception&) {
        return error(DBUS_ERROR_FAILED, "Internal error");
    }
    return error(DBUS_ERROR_NO_MEMORY, "Not enough memory for the reply");
}

TR::Value* TRDBusAdaptor::entry(const std::string& address) {
    const TR::Address key(address);
    if (storage_->hasAddress(key)) return &(*storage_)[key];
    if (address.size() > kUnknownAddressBytes) return nullptr;
    if (unknownAddressesBytes_ + address.size() > kUnknownAddressesBytes) return nullptr;
    TR::Value& added = (*storage_)[key];
    unknownAddressesBytes_ += address.size();
    return &added;
}

void TRDBusAdaptor::set(const std::string& address, const std::string& value) {
    replyStrings_ = 0;
    if (storage_ == nullptr) return;
    const pthread_helper::scoped_lock lock(storage_->getStorageMutex());
    TR::Value* const stored = entry(address);
    if (stored == nullptr || !stored->isMutableByUser()) return;
    if (!stored->filePathToStoreValue().empty())
        TR::Utils::setFileContent(stored->filePathToStoreValue(), value);
    else if (!stored->getPathInConfig().empty())
        TR::Utils::getCmdOutput(kUciSet + stored->getPathInConfig() + "=\"" + value + '"');
    else if (!stored->setByUserWithConversion(value))
        throw DBus::ErrorFailed("Logic error");
}

std::string TRDBusAdaptor::get_value(const std::string& address) {
    if (storage_ == nullptr) return {};
    std::string text;
    {
        const pthread_helper::scoped_lock lock(storage_->getStorageMutex());
        text = storage_->getValueCopy(TR::Address(address)).toString();
    }
    return carried(std::move(text));
}

std::string TRDBusAdaptor::flag(const std::string& address, bool (TR::Value::*isSet)() const) {
    if (storage_ == nullptr) return {};
    const pthread_helper::scoped_lock lock(storage_->getStorageMutex());
    const TR::Value* const stored = entry(address);
    return stored != nullptr && (stored->*isSet)() ? "1" : "0";
}

std::string TRDBusAdaptor::getWritable(const std::string& address) {
    return flag(address, &TR::Value::isMutableByUser);
}

std::string TRDBusAdaptor::getForcedInform(const std::string& address) {
    return flag(address, &TR::Value::isForcedInform);
}

std::vector<std::string> TRDBusAdaptor::list(std::vector<TR::Address> (TR::Storage::*addresses)()
                                                 const) {
    std::vector<TR::Address> taken;
    if (storage_ != nullptr) {
        const pthread_helper::scoped_lock lock(storage_->getStorageMutex());
        taken = (storage_->*addresses)();
    }
    replyStrings_ = taken.size();
    return carried(std::move(taken));
}

std::vector<std::string> TRDBusAdaptor::listAddresses() {
    return list(&TR::Storage::listAddresses);
}

std::vector<std::string> TRDBusAdaptor::listParametersOnly() {
    return list(&TR::Storage::listParametersOnly);
}

void TRDBusAdaptor::updateNotifTable() {
    replyStrings_ = 0;
    if (storage_ == nullptr) return;
    TR::NotifTable& table = storage_->getNotifTable();
    const pthread_helper::scoped_lock lock(table.getMutex());
    table.update();
}

std::string TRDBusAdaptor::checkValueChange() {
    if (storage_ == nullptr) return {};
    TR::NotifTable& table = storage_->getNotifTable();
    std::string changes;
    {
        const pthread_helper::scoped_lock lock(table.getMutex());
        changes = table.checkValueChange();
    }
    return carried(std::move(changes));
}
