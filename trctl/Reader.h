#pragma once

#include "trctl/Commands.h"

#include <optional>
#include <string>

namespace trctl {

/// Reads value after value. A value that the daemon refuses is left out, with a complaint, and the
/// status is kRefused from then on.
class Reader {
  public:
    explicit Reader(client::Daemon& daemon) : daemon_(daemon) {}

    std::optional<std::string> value(const std::string& address) {
        try {
            return daemon_.value(address);
        } catch (const client::Refused& refusal) {
            complain(address + ": " + refusal.what());
            status_ = kRefused;
            return std::nullopt;
        }
    }
    int status() const { return status_; }

  private:
    client::Daemon& daemon_;
    int status_ = kDone;
};

}  // namespace trctl
