#pragma once

#include "model/Address.h"
#include "model/NotifTable.h"
#include "model/Value.h"
#include "stb/inc/private/pthread_helper.h"

#include <map>
#include <vector>

namespace TR {

/// The one tree of parameters: every address with its value, the changes since the last cycle, and
/// the notification table. The worker thread's providers write it, the D-Bus thread reads and
/// writes it. No operation locks: the caller holds `getStorageMutex()` for the whole of what it
/// does, except that the change map belongs to the worker thread alone (only `set` adds to it, and
/// only providers call `set`).
class Storage {
  public:
    /// Replaces the value at the address whole, settings included. True when this was recorded as a
    /// change: the entry had a type before and its type or elements differ. The first fill is never
    /// a change.
    bool set(const Address& address, Value value) KELM_REQUIRES(storageMutex_);

    /// Replaces the elements only; false when the address is unknown or the types differ. Records
    /// nothing.
    bool setWithCheck(const Address& address, const Value& value) KELM_REQUIRES(storageMutex_);

    bool hasAddress(const Address& address) const KELM_REQUIRES(storageMutex_);

    /// The stored value; an unknown address gets an `Undefined` entry. The reference lives until
    /// the entry is removed.
    /// Clang does not follow the object of an operator, so this lock alone is not checked.
    Value& operator[](const Address& address) KELM_NO_ANALYSIS { return values_[address]; }

    /// Erases exactly this entry, not its children, not its recorded change. False when it is
    /// unknown.
    bool remove(const Address& address) KELM_REQUIRES(storageMutex_);

    /// The current value: of a file-backed parameter the file's content, of a UCI-backed one what
    /// uci prints without the white space at its end (each a plain `String`, empty when there is
    /// none), else a full copy. `Undefined`, and no new entry, for an unknown address. Runs a
    /// command and reads files.
    Value getValueCopy(const Address& address) const KELM_REQUIRES(storageMutex_);

    /// Every address, in order.
    std::vector<Address> listAddresses() const KELM_REQUIRES(storageMutex_);
    /// Every address that is not an object node, in order.
    std::vector<Address> listParametersOnly() const KELM_REQUIRES(storageMutex_);

    /// Copy of the newest value of each parameter that changed since `clearUpdates()`.
    std::map<Address, Value> updates() const { return updates_; }
    void clearUpdates() { updates_.clear(); }

    pthread_helper::mutex& getStorageMutex() KELM_RETURN_CAPABILITY(storageMutex_) {
        return storageMutex_;
    }
    /// Handed out for callers that must not wait for the store; nothing in the daemon takes it.
    pthread_helper::mutex& getUpdatesMutex() { return updatesMutex_; }
    NotifTable& getNotifTable() { return notifTable_; }

  private:
    std::map<Address, Value> values_ KELM_GUARDED_BY(storageMutex_);
    std::map<Address, Value> updates_;
    NotifTable notifTable_;
    pthread_helper::mutex storageMutex_;
    pthread_helper::mutex updatesMutex_;
};

}  // namespace TR
