#pragma once

#include <dbus/dbus.h>

#include <memory>
#include <string>
#include <vector>

/// What came back for one call. A refused or lost call has `ok` false and the D-Bus error's name and text.
struct TrReply {
    bool ok = false;
    std::string errorName;
    std::string errorText;
    std::string text;               ///< the reply's string, if it is one
    std::vector<std::string> list;  ///< the reply's strings, if it is an array
};

/// A call put together by hand: no interface at all when it is null, any number of string arguments.
struct TrCall {
    const char* interface;
    std::string member;
    std::vector<std::string> arguments;
};

/// A client of the daemon on a connection of its own. Blocking; one thread at a time. Failures show in the
/// reply, an unreachable bus included; nothing throws.
class TrClient {
  public:
    /// \p service is the daemon's bus name, well-known or unique.
    explicit TrClient(const std::string& busAddress, std::string service = "com.kelm.stb.TR");

    TrReply set(const std::string& address, const std::string& value);
    TrReply getValue(const std::string& address);
    TrReply getWritable(const std::string& address);
    TrReply getForcedInform(const std::string& address);
    TrReply listAddresses();
    TrReply listParametersOnly();
    TrReply updateNotifTable();
    TrReply checkValueChange();
    TrReply call(const TrCall& call);

    /// A call under way; its reply is dropped with it.
    struct CancelPending {
        void operator()(DBusPendingCall* pending) const;
    };
    using Pending = std::unique_ptr<DBusPendingCall, CancelPending>;
    Pending sendGetValue(const std::string& address);

    static constexpr int kTimeoutMilliseconds = 60'000;

  private:
    struct CloseConnection {
        void operator()(DBusConnection* connection) const;
    };
    struct DropMessage {
        void operator()(DBusMessage* message) const { dbus_message_unref(message); }
    };
    using Message = std::unique_ptr<DBusMessage, DropMessage>;

    Message build(const TrCall& call) const;
    TrReply own(const char* member, const std::vector<std::string>& arguments = {});

    std::string service_;
    std::unique_ptr<DBusConnection, CloseConnection> connection_;
};
