#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace client {

/// The bus or the daemon on it cannot be reached. `advice()` is a sentence on what to do.
class Unreachable : public std::runtime_error {
  public:
    Unreachable(const std::string& reason, std::string advice)
        : std::runtime_error(reason), advice_(std::move(advice)) {}
    const std::string& advice() const { return advice_; }

  private:
    std::string advice_;
};

/// The bus is there, and no daemon answers on it (yet).
class NoDaemon : public Unreachable {
  public:
    using Unreachable::Unreachable;
};

/// The daemon answered, with an error.
class Refused : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The running daemon as the commands see it; the tests have one without a bus. Every operation
/// is one blocking call, on the program's only thread, and throws Unreachable or Refused.
/// `isWritable`, `isForcedInform` and `set` make the daemon add an address that it does not have,
/// so they are for listed addresses only.
class Daemon {
  public:
    Daemon() = default;
    virtual ~Daemon() = default;
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    /// Every address, objects (which end with a point) included.
    virtual std::vector<std::string> addresses() = 0;
    virtual std::vector<std::string> parameters() = 0;
    virtual std::string value(const std::string& address) = 0;
    virtual bool isWritable(const std::string& address) = 0;
    virtual bool isForcedInform(const std::string& address) = 0;
    virtual void set(const std::string& address, const std::string& value) = 0;
    /// The pending change lines.
    virtual std::string changes() = 0;
    /// Makes the daemon read the notification file again.
    virtual void updateNotifTable() = 0;

    /// One question about many addresses, which all have to be listed ones.
    enum class Question { Value, Writable, ForcedInform };
    using Addresses = std::vector<const std::string*>;
    /// Takes each address, in order, and what get_value, getWritable or getForcedInform returns;
    /// nothing when the daemon refused this one.
    using Answer = std::function<void(const std::string&, std::optional<std::string>)>;
    virtual void ask(Question question, const Addresses& addresses, const Answer& answer);
};

}  // namespace client
