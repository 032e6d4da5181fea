#pragma once

#include "tests/support/TrClient.h"

#include <atomic>
#include <string>
#include <thread>

#include <sys/resource.h>
#include <sys/types.h>

/// What the fault tables do to the system around the daemon. Everything throws when it cannot be
/// done.
namespace faults {

/// The soft limit, up to the hard one.
void setLimit(pid_t pid, int resource, rlim_t value);
rlim_t addressSpaceOf(pid_t pid);

/// Ends the commands of the daemon that hang, as a watchdog would.
void killHangingCommands(pid_t daemon);

/// eth10 and the following ones.
void addInterfaces(int count);
void removeInterfaces(int count);

/// Replaces the folder of the settings by a small file system.
void mountSettings();
/// Fills that to its last byte, and makes the room again.
void fillSettings();
void emptySettings();
void setSettingsReadOnly(bool isReadOnly);

/// The real client removes its file and writes it again, line by line; here without a pause, for as
/// long as the object lives. The file is then what it was.
class RewrittenNotificationFile {
  public:
    RewrittenNotificationFile();
    ~RewrittenNotificationFile();
    RewrittenNotificationFile(const RewrittenNotificationFile&) = delete;
    RewrittenNotificationFile& operator=(const RewrittenNotificationFile&) = delete;

    unsigned times() const { return times_; }

  private:
    const std::string content_;
    std::atomic<unsigned> times_{0};
    std::atomic<bool> done_{false};
    std::thread thread_;
};

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
