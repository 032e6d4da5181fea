#pragma once

#include "cwmp/Snapshot.h"

#include <string>

namespace cwmp {

/// The file of watched parameters that the daemon reads. It holds the values that the ACS knows.
class NotificationFile {
  public:
    explicit NotificationFile(std::string path = "/tmp/.easycwmp_notif_param_value")
        : path_(std::move(path)) {}

    /// Empty without a file, and for one larger than the daemon would read.
    std::string read() const;
    /// Writes the new file beside the old one. False, and nothing has changed, when that fails.
    bool writeBeside(const std::string& text) const;
    /// The new file takes the place of the old one in one step.
    bool putInPlace() const;

  private:
    const std::string path_;
};

}  // namespace cwmp
