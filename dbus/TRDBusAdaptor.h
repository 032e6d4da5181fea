#pragma once

#include "TR_adaptor.h"

#include <dbus-c++/dbus.h>

#include <cstdint>
#include <string>
#include <vector>

namespace TR {
class Storage;
}

/// Carries out the eight methods of `com.kelm.stb.TR` against the store. All of it runs on the
/// D-Bus thread, one call at a time; each operation takes the store mutex, or the notification
/// table's, for itself. The store is borrowed and may be null: then reads are empty and writes do
/// nothing. Texts leave as valid UTF-8; a reply that the bus could not carry becomes the error
/// LimitsExceeded. Nothing but DBus::Error is ever thrown.
class TRDBusAdaptor : public com::kelm::stb::TR_adaptor,
                      public DBus::IntrospectableAdaptor,
                      public DBus::ObjectAdaptor {
  public:
    static constexpr const char* kInterface = "com.kelm.stb.TR";
    static constexpr const char* kObjectPath = "/com/kelm/stb/TR";

    /// \p largestMessage in bytes, header included.
    TRDBusAdaptor(DBus::Connection& connection, TR::Storage* storage, std::uint64_t largestMessage);

    /// Writes one parameter: to its file, its UCI option, or in memory, in this order of
    /// preference. One that is unknown or not writable is left alone without an error; a text that
    /// does not convert to the parameter's type is the error Failed, "Logic error".
    void set(const std::string& address, const std::string& value) override;
    /// The current value's text; empty for an unknown address.
    std::string get_value(const std::string& address) override;
    /// "1" or "0". An unknown address gets an entry in the store.
    std::string getWritable(const std::string& address) override;
    std::string getForcedInform(const std::string& address) override;
    std::vector<std::string> listAddresses() override;
    std::vector<std::string> listParametersOnly() override;
    void updateNotifTable() override;
    std::string checkValueChange() override;

  private:
    void write(const std::string& address, const std::string& value);
    std::string carried(std::string text) const;
    std::vector<std::string> carried(std::vector<std::string> list) const;

    void checkSize(std::uint64_t bytes) const;

    TR::Storage* storage_;
    std::uint64_t largestMessage_;
};
