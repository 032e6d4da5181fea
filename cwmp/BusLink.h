#pragma once

#include "client/BusDaemon.h"
#include "cwmp/Deadline.h"

#include <functional>
#include <memory>
#include <string>

namespace cwmp {

/// The one connection to the daemon. It is opened at the first use, which waits until the daemon's
/// first cycle is over; a later use opens another one only when the bus has gone meanwhile.
class BusLink {
  public:
    /// What one command may wait for, all together.
    static constexpr Deadline::Milliseconds kTimePerCommand{10'000};

    /// \p pause waits a moment and is false when there is nobody to wait for. Each call of the
    /// daemon ends at the deadline, which the owner sets for each command; the first use sets it
    /// again after its wait, as that is not part of the command.
    BusLink(std::string address, Deadline::Milliseconds wait, Deadline& deadline,
            std::function<bool()> pause);

    /// Throws client::Unreachable.
    client::Daemon& daemon();

  private:
    void awaitFirstCycle();
    client::BusDaemon& connected();

    const std::string address_;
    const Deadline::Milliseconds wait_;
    Deadline& deadline_;
    const std::function<bool()> pause_;
    std::unique_ptr<client::BusDaemon> bus_;
    bool hasWaited_ = false;
};

}  // namespace cwmp
