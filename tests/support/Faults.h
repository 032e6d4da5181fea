#pragma once

#include "tests/support/Child.h"
#include "tests/support/TrClient.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/types.h>

/// Something that is wrong for as long as the object lives; null is no fault.
using Fault = std::shared_ptr<void>;

/// What the fault tables do to the system around the daemon. Everything throws when it cannot be
/// done, and with it ends the test that asked for it.
namespace faults {

/// Throws \p what, which a test then fails with.
void require(bool condition, const std::string& what);

/// A fault that is there already and ends by the action.
Fault until(std::function<void()> end);
Fault all(std::vector<Fault> parts);

/// A stand-in that misbehaves as box::setFault describes.
Fault command(const std::string& name, const std::string& fault);
/// Kills the commands that hang, again and again after such a pause. Has to outlive the faults that
/// make them hang.
Fault watchdog(std::chrono::milliseconds pause);
Fault withoutFile(const std::string& path);

/// A soft limit, up to the hard one.
Fault limit(pid_t pid, int resource, rlim_t value);
rlim_t addressSpaceOf(pid_t pid);

/// eth10 and the following ones, or from another number on.
Fault moreInterfaces(int count, int first = 10);

/// Replaces the folder of the settings by a small file system, for as long as the box lives.
void mountSettings();
/// Not a byte fits into that any more.
Fault fullSettings();
Fault readOnlySettings();

/// The real client removes its file and writes it again, line by line; here again and again.
Fault rewrittenNotificationFile();

/// With this environment a switch of tests/shim acts on the daemon.
Child::Environment shimEnvironment();
Fault shim(const std::string& name, const std::string& content = "");

/// A client, a separate process, that sends a call many times at once and reads no reply. Killed
/// with the object.
class ClientThatNeverReads {
  public:
    /// Its last call adds this address: all others have been carried out when it is listed.
    static constexpr char kLastAddress[] = "Device.LastOfTheUnread";

    /// Two thousand lists: forty megabytes.
    explicit ClientThatNeverReads(const std::string& bus)
        : ClientThatNeverReads(bus, {TrClient::kInterface, "listAddresses"}, 2000) {}
    ClientThatNeverReads(const std::string& bus, const TrCall& call, int times);
    ~ClientThatNeverReads();
    ClientThatNeverReads(const ClientThatNeverReads&) = delete;
    ClientThatNeverReads& operator=(const ClientThatNeverReads&) = delete;

    bool isThere() const;

  private:
    pid_t pid_;
};

}  // namespace faults
