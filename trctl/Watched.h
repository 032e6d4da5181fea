#pragma once

#include <optional>
#include <string>
#include <vector>

namespace trctl {

/// The parameters that the CWMP client watches: the rows of its notification file whose
/// notification is 1 or 2. Reads the file once, at construction. The daemon follows the same file.
class Watched {
  public:
    /// Nothing is known when the file is missing, or for root alone.
    Watched();
    /// The rows are these.
    explicit Watched(const std::vector<std::string>& rows);

    /// Nothing when it is not known.
    std::optional<bool> has(const std::string& parameter) const;

  private:
    void add(const std::string& row);

    std::vector<std::string> parameters_;
    bool isKnown_ = false;  ///< every row could be read
};

}  // namespace trctl
