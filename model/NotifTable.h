#pragma once

#include "model/Address.h"
#include "model/Value.h"
#include "stb/inc/private/pthread_helper.h"

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace TR {

/// The parameters that the CWMP client watches, as its file lists them, and those of them that
/// changed in the latest cycle. The D-Bus thread calls `update()` and `checkValueChange()` and
/// holds `getMutex()` meanwhile; the worker thread calls `tryTriggerNotify()`, which takes the
/// mutex itself. A missing file or a bad line shows as an empty table or an entry that matches
/// nothing; a failing notify command is ignored.
class NotifTable {
  public:
    struct NotifEntry {
        std::string parameter;
        std::string value;  ///< as the file gives it; in a pending change the new value's text
        std::string notification;
        std::string type;  ///< may be empty
    };

    pthread_helper::mutex& getMutex() const KELM_RETURN_CAPABILITY(mutex_) { return mutex_; }

    /// Reloads the table from the client's file. The caller holds the mutex.
    void update() KELM_REQUIRES(mutex_);

    /// Reads one line of the file: a JSON object with the keys parameter, value, notification,
    /// type. They are read in this order: the first missing key ends the reading, and its text and
    /// the later ones stay unchanged. A line that is not a JSON object changes nothing. Values that
    /// are not strings are taken in their JSON text form.
    static void parseJsonLine(const std::string& line, std::string& parameter, std::string& value,
                              std::string& notification, std::string& type);

    /// The pending changes, one line each, in table order; reading does not clear them. The caller
    /// holds the mutex.
    std::string checkValueChange() const KELM_REQUIRES(mutex_);

    /// Makes the watched ones among \p updates the pending changes and, if there are any, runs the
    /// notify command. Holds the mutex meanwhile, also while the command runs (about a second when
    /// the client is busy).
    void tryTriggerNotify(const std::map<Address, Value>& updates);

    /// Runs the notify command alone; takes no lock.
    void triggerNotify();

  private:
    std::vector<NotifEntry> table_ KELM_GUARDED_BY(mutex_);
    std::vector<NotifEntry> pendingChanges_ KELM_GUARDED_BY(mutex_);
    mutable pthread_helper::mutex mutex_;
};

/// One change line without its line feed. The texts go in as they are, without JSON escaping.
std::ostream& operator<<(std::ostream& stream, const NotifTable::NotifEntry& entry);

}  // namespace TR
