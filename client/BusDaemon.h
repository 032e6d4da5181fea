#pragma once

#include "client/Daemon.h"

#include <memory>
#include <string>
#include <vector>

namespace client {

/// The daemon on a session bus, through the binding's proxy. Owns its connection. Every call
/// blocks: the binding crashes over the reply to a call that does not wait. The binding's
/// exceptions become Unreachable or Refused.
class BusDaemon : public Daemon {
  public:
    /// Connects to the bus at this address, or to the one that the environment names when it is
    /// empty. Throws Unreachable.
    explicit BusDaemon(const std::string& busAddress);
    ~BusDaemon() override;

    std::vector<std::string> addresses() override;
    std::vector<std::string> parameters() override;
    std::string value(const std::string& address) override;
    bool isWritable(const std::string& address) override;
    bool isForcedInform(const std::string& address) override;
    void set(const std::string& address, const std::string& value) override;
    std::string changes() override;

  private:
    struct Connected;
    std::unique_ptr<Connected> connected_;
};

}  // namespace client
