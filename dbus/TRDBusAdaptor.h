#pragma once

#include "TR_adaptor.h"
#include "dbus/Libdbus.h"
#include "model/Storage.h"

#include <dbus-c++/dbus.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Carries out the eight methods of `com.kelm.stb.TR` against the store. All of it runs on the
/// D-Bus thread, one call at a time; each operation takes the store mutex, or the notification
/// table's, for itself. The store is borrowed and may be null: then reads are empty and writes do
/// nothing. Texts leave as valid UTF-8; a reply above `kLargestReplyBytes` becomes the error
/// LimitsExceeded. A reply that memory does not suffice for becomes the error NoMemory, and when
/// even that cannot be sent, the connection is closed.
class TRDBusAdaptor : public com::kelm::stb::TR_adaptor,
                      public DBus::IntrospectableAdaptor,
                      public DBus::ObjectAdaptor {
  public:
    static constexpr const char* kInterface = "com.kelm.stb.TR";
    static constexpr const char* kObjectPath = "/com/kelm/stb/TR";
    /// Largest reply, header included: what dbus-daemon takes when its configuration sets no
    /// `max_message_size`. It disconnects a service that sends more.
    static constexpr std::uint64_t kLargestReplyBytes = std::uint64_t{32} << 20;
    /// Unknown addresses that calls add to the store: one of them, and all together.
    static constexpr std::size_t kUnknownAddressBytes = std::size_t{1} << 10;
    static constexpr std::size_t kUnknownAddressesBytes = std::size_t{4} << 20;

    TRDBusAdaptor(DBus::Connection& connection, TR::Storage* storage);

    /// True for a call of an operation that does more than reply.
    static bool hasEffect(DBusMessage* call);

    /// Writes one parameter: to its file, its UCI option, or in memory, in this order of
    /// preference. One that is unknown or not writable is left alone without an error; a text that
    /// does not convert to the parameter's type is the error Failed, "Logic error".
    void set(const std::string& address, const std::string& value) override;
    /// The current value's text; empty for an unknown address.
    std::string get_value(const std::string& address) override;
    /// "1" or "0". An unknown address gets an entry in the store while there is room for it.
    std::string getWritable(const std::string& address) override;
    std::string getForcedInform(const std::string& address) override;
    std::vector<std::string> listAddresses() override;
    std::vector<std::string> listParametersOnly() override;
    void updateNotifTable() override;
    std::string checkValueChange() override;

  private:
    /// Replaces the binding's. That one ends the process when a call has no interface or an
    /// exception has another type than its own. It also replies to calls that want no reply and
    /// sends replies whose contents could not be appended.
    bool handle_message(const DBus::Message& message) override;
    /// Null when memory for an error is short too.
    TR::Libdbus::OwnedMessage replyTo(const DBus::CallMessage& call,
                                      DBus::InterfaceAdaptor& interface);

    /// The entry. A missing one is added when there is room; else null.
    TR::Value* entry(const std::string& address) KELM_REQUIRES(storage_->getStorageMutex());
    std::string flag(const std::string& address, bool (TR::Value::*isSet)() const);
    std::vector<std::string> list(std::vector<TR::Address> (TR::Storage::*addresses)() const);

    TR::Storage* storage_;
    std::size_t unknownAddressesBytes_ = 0;
    /// Strings that the reply under way must hold.
    std::size_t replyStrings_ = 0;
};
