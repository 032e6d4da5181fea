#include "dbus/TRDBusAdaptor.h"

#include "dbus/BusLimits.h"
#include "dbus/Utf8.h"
#include "model/Storage.h"
#include "stb/src/common/Commands.h"
#include "stb/src/common/Files.h"

#include <exception>
#include <new>
#include <utility>

namespace {

constexpr char kUciSet[] = "/usr/bin/uci -q set ";
constexpr char kLimitsExceeded[] = "org.freedesktop.DBus.Error.LimitsExceeded";
constexpr char kTooLarge[] = "The reply is larger than the bus carries";

/// Runs one operation. An exception of any other type than the binding's would end the process, and
/// the binding keeps the texts of its own by pointer, so they are constants.
template <typename Operation>
auto guarded(Operation operation) -> decltype(operation()) {
    try {
        return operation();
    } catch (const DBus::Error&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw DBus::ErrorNoMemory("Not enough memory for the reply");
    } catch (const std::exception&) {
        throw DBus::ErrorFailed("Internal error");
    }
}

const char* flag(bool isSet) {
    return isSet ? "1" : "0";
}

std::vector<std::string> texts(std::vector<TR::Address> addresses) {
    std::vector<std::string> list;
    list.reserve(addresses.size());
    for (TR::Address& address : addresses) list.push_back(std::move(address).get());
    return list;
}

/// Reads the store: \p read runs under the store mutex. Without a store the result is empty.
template <typename Read>
auto readStore(TR::Storage* storage, Read read) -> decltype(read(*storage)) {
    if (storage == nullptr) return {};
    const pthread_helper::scoped_lock lock(storage->getStorageMutex());
    return read(*storage);
}

}  // namespace

TRDBusAdaptor::TRDBusAdaptor(DBus::Connection& connection, TR::Storage* storage,
                             std::uint64_t largestMessage)
    : DBus::ObjectAdaptor(connection, kObjectPath),
      storage_(storage),
      largestMessage_(largestMessage) {}

void TRDBusAdaptor::set(const std::string& address, const std::string& value) {
    if (storage_ == nullptr) return;
    guarded([&] { write(address, value); });
}

void TRDBusAdaptor::write(const std::string& address, const std::string& value) {
    const pthread_helper::scoped_lock lock(storage_->getStorageMutex());
    TR::Value& stored = (*storage_)[TR::Address(address)];
    if (!stored.isMutableByUser()) return;
    if (!stored.filePathToStoreValue().empty())
        TR::Utils::setFileContent(stored.filePathToStoreValue(), value);
    else if (!stored.getPathInConfig().empty())
        TR::Utils::getCmdOutput(kUciSet + stored.getPathInConfig() + "=\"" + value + '"');
    else if (!stored.setByUserWithConversion(value))
        throw DBus::ErrorFailed("Logic error");
}

std::string TRDBusAdaptor::get_value(const std::string& address) {
    return guarded([&] {
        return carried(readStore(
            storage_,
            [&](TR::Storage& storage) {
                return storage.getValueCopy(TR::Address(address)).toString();
            }));
    });
}

std::string TRDBusAdaptor::getWritable(const std::string& address) {
    return guarded([&] {
        return readStore(
            storage_,
            [&](TR::Storage& storage) {
                return std::string(flag(storage[TR::Address(address)].isMutableByUser()));
            });
    });
}

std::string TRDBusAdaptor::getForcedInform(const std::string& address) {
    return guarded([&] {
        return readStore(
            storage_,
            [&](TR::Storage& storage) {
                return std::string(flag(storage[TR::Address(address)].isForcedInform()));
            });
    });
}

std::vector<std::string> TRDBusAdaptor::listAddresses() {
    return guarded([&] {
        return carried(texts(readStore(
            storage_, [](TR::Storage& storage) { return storage.listAddresses(); })));
    });
}

std::vector<std::string> TRDBusAdaptor::listParametersOnly() {
    return guarded([&] {
        return carried(texts(readStore(
            storage_, [](TR::Storage& storage) { return storage.listParametersOnly(); })));
    });
}

void TRDBusAdaptor::updateNotifTable() {
    guarded([&] {
        TR::NotifTable& table = storage_->getNotifTable();
        const pthread_helper::scoped_lock lock(table.getMutex());
        table.update();
    });
}

std::string TRDBusAdaptor::checkValueChange() {
    return guarded([&] {
        TR::NotifTable& table = storage_->getNotifTable();
        const pthread_helper::scoped_lock lock(table.getMutex());
        return carried(table.checkValueChange());
    });
}

// Repairing only makes a text longer: what is too large already need not be repaired first.
std::string TRDBusAdaptor::carried(std::string text) const {
    checkSize(TR::BusLimits::replyBytes(text));
    text = TR::toValidUtf8(std::move(text));
    checkSize(TR::BusLimits::replyBytes(text));
    return text;
}

std::vector<std::string> TRDBusAdaptor::carried(std::vector<std::string> list) const {
    for (std::string& text : list) text = TR::toValidUtf8(std::move(text));
    const std::uint64_t bytes = TR::BusLimits::replyBytes(list);
    checkSize(bytes);
    if (bytes > TR::BusLimits::kProtocolArrayBytes) throw DBus::Error(kLimitsExceeded, kTooLarge);
    return list;
}

void TRDBusAdaptor::checkSize(std::uint64_t bytes) const {
    if (bytes > largestMessage_) throw DBus::Error(kLimitsExceeded, kTooLarge);
}
