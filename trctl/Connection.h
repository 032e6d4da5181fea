#pragma once

#include "client/BusDaemon.h"

#include <chrono>
#include <memory>
#include <string>

namespace trctl {

/// The daemon's bus: connects to the first place of client::busPlaces at which one answers, and
/// adds the places that it tried to what Unreachable advises.
class Connection {
  public:
    /// \p bus as for client::busPlaces; each place may take that long. Throws client::Unreachable.
    Connection(const std::string& bus, std::chrono::milliseconds time);

    client::BusDaemon& daemon() { return *daemon_; }
    /// A line for each place, each with a line feed ahead. Not escaped.
    const std::string& tried() const { return tried_; }

  private:
    std::string tried_;
    std::unique_ptr<client::BusDaemon> daemon_;
};

}  // namespace trctl
