#pragma once

#include "client/Daemon.h"

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace trctl {

class UnusableSnapshot : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The daemon in an archive of kelm-trd-snapshot: the values that it served then, read-only. Reads
/// the archive once, at construction, and throws UnusableSnapshot with the reason when it cannot be
/// used.
class SnapshotDaemon : public client::Daemon {
  public:
    /// \p archive is a path.
    explicit SnapshotDaemon(const std::string& archive);

    /// When and on which host it was taken, as far as the archive has it.
    const std::string& origin() const { return origin_; }

    std::vector<std::string> addresses() override;
    std::vector<std::string> parameters() override { return addresses(); }
    std::string value(const std::string& address) override { return values_[address]; }
    bool isWritable(const std::string&) override { return false; }
    bool isForcedInform(const std::string&) override { return false; }
    void set(const std::string& address, const std::string& value) override;
    std::string changes() override { return {}; }
    void updateNotifTable() override {}

  private:
    std::map<std::string, std::string> values_;
    std::string origin_;
};

/// The sentence of an archive's `about`: the host, and the time when taking it began.
std::string originOf(const std::string& about);

}  // namespace trctl
