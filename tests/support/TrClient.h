#pragma once

#include <dbus/dbus.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// What came back for one call. A refused or lost call has `ok` false and the D-Bus error's
/// name and text.
struct TrReply {
    bool ok = false;
    std::string errorName;
    std::string errorText;
    std::string signature;          ///< of the reply's arguments; empty when it has none
    std::string text;               ///< the reply's first argument, if it is a string
    std::vector<std::string> list;  ///< the same, if it is an array of strings
};

/// A call put together by hand: no interface at all when it is null, any number of string
/// arguments, then whatever `append` adds; any path.
struct TrCall {
    const char* interface;
    std::string member;
    std::vector<std::string> arguments = {};
    std::function<void(DBusMessageIter&)> append = {};
    std::string path = "/com/kelm/stb/TR";
};

/// A client of the daemon on a private connection, like the CWMP client. Blocking;
/// one thread at a time. Failures show in the reply, an unreachable bus and an argument that
/// libdbus would abort on included; nothing throws.
class TrClient {
  public:
    static constexpr char kService[] = "com.kelm.stb.TR";
    static constexpr char kInterface[] = "com.kelm.stb.TR";
    static constexpr int kTimeoutMilliseconds = 180'000;

    struct CloseConnection {
        void operator()(DBusConnection* connection) const;
    };
    struct DropMessage {
        void operator()(DBusMessage* message) const { dbus_message_unref(message); }
    };
    using Connection = std::unique_ptr<DBusConnection, CloseConnection>;
    using Message = std::unique_ptr<DBusMessage, DropMessage>;

    /// \p service is the daemon's bus name, well-known or unique.
    explicit TrClient(const std::string& busAddress, std::string service = kService);

    /// False also when the bus has gone since.
    bool connected() const;
    /// Why the constructor did not get a connection.
    const TrReply& connectError() const { return connectError_; }
    /// For every call from now on; kTimeoutMilliseconds at first.
    void setTimeout(std::chrono::milliseconds timeout) { timeout_ = timeout; }

    TrReply set(const std::string& address, const std::string& value);
    TrReply getValue(const std::string& address);
    TrReply getWritable(const std::string& address);
    TrReply getForcedInform(const std::string& address);
    TrReply listAddresses();
    TrReply listParametersOnly();
    TrReply updateNotifTable();
    TrReply checkValueChange();
    TrReply introspect();
    TrReply call(const TrCall& call);

    /// Sends a call that asks for no reply; false when it cannot be sent.
    bool post(const TrCall& call);
    /// Replies, or errors, that came although nobody asked for them.
    std::size_t strayReplies() const { return strayReplies_; }

    /// A call under way; its reply is dropped with it.
    struct CancelPending {
        void operator()(DBusPendingCall* pending) const;
    };
    using Pending = std::unique_ptr<DBusPendingCall, CancelPending>;
    Pending send(const TrCall& call);
    Pending sendGetValue(const std::string& address);
    /// Blocks until the reply has come. The call must have been sent.
    static TrReply wait(const Pending& call);

    /// The unique name of the service's owner; empty when nobody owns it.
    std::string owner();
    /// The process id of the service's owner as the bus sees it; 0 when nobody owns it.
    std::uint32_t ownerPid();

  private:
    void open(const std::string& busAddress);
    Message build(const TrCall& call) const;
    Message askBus(const char* member);
    Message transact(DBusMessage* message, TrReply& failure);
    TrReply own(const char* member, const std::vector<std::string>& arguments = {});
    TrReply unreachable() const;

    std::string service_;
    std::chrono::milliseconds timeout_{kTimeoutMilliseconds};
    TrReply connectError_;
    std::size_t strayReplies_ = 0;
    Connection connection_;
};
