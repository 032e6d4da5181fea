#pragma once

#include "client/Daemon.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace client {

/// The daemon on a session bus, over plain libdbus: the binding's proxy crashes over the reply to a
/// call that does not wait, and many calls are in flight here. Owns its connection. One thread.
class BusDaemon : public Daemon {
  public:
    /// Connects to the bus at this address, and starts none for it. Throws Unreachable, also when
    /// the bus does not answer within the time.
    explicit BusDaemon(const std::string& busAddress,
                       std::chrono::milliseconds timeToConnect = kTimePerCall);
    ~BusDaemon() override;

    /// From now on all calls together may take that long; without it each may take `kTimePerCall`,
    /// or the time that is set for each.
    void setTimeLeft(std::chrono::milliseconds time);
    void setTimePerCall(std::chrono::milliseconds time);
    /// False when the bus has gone.
    bool isConnected() const;

    std::vector<std::string> addresses() override;
    std::vector<std::string> parameters() override;
    std::string value(const std::string& address) override;
    bool isWritable(const std::string& address) override;
    bool isForcedInform(const std::string& address) override;
    void set(const std::string& address, const std::string& value) override;
    std::string changes() override;
    void updateNotifTable() override;
    void ask(Question question, const Addresses& addresses, const Answer& answer) override;

    /// The daemon answers between two steps of its cycle; a slow command of its may take a while.
    static constexpr std::chrono::milliseconds kTimePerCall{30'000};

  private:
    struct Connected;
    std::unique_ptr<Connected> connected_;
};

}  // namespace client
