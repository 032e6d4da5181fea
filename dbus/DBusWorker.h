#pragma once

#include "dbus/BusDispatcher.h"
#include "stb/src/common/STBThread.h"

#include <atomic>
#include <memory>

class TRDBusAdaptor;

namespace TR {

class Storage;

/// The D-Bus thread: opens the session bus, takes the name `com.kelm.stb.TR`, serves the store
/// there and ends when it is stopped or the bus is gone. Without a bus at the start the thread ends
/// with an ERROR line and the rest of the daemon goes on; without the name it serves under its
/// unique one. `start`, `stop`, `isConnecting` and `isBusLost` are main's; there is one DBusWorker
/// in the process, since its dispatcher is the binding's process-wide default. The store is
/// borrowed and outlives the worker.
class DBusWorker : public STBThread {
  public:
    explicit DBusWorker(Storage* storage);
    /// Waits for the thread, also while it connects.
    ~DBusWorker() override;

    void start();
    /// Makes the dispatcher leave its loop, then waits for the thread. A bus that does not answer
    /// may keep the thread inside libdbus for ever. `stop` then returns after half a second without
    /// the thread, and `isConnecting` is true.
    void stop();
    /// True from the start until the object is served or the thread has ended: the thread waits for
    /// the bus and cannot be stopped.
    bool isConnecting() const { return isRunning() && !isServing_ && !hasCompleted(); }
    /// True when a connection that once stood has been lost.
    bool isBusLost() { return dispatcher_.isBusLost(); }

    void run() override;

  private:
    Storage* storage_;
    std::unique_ptr<TRDBusAdaptor> adaptor_;
    BusDispatcher dispatcher_;
    std::atomic<bool> isServing_{false};
};

}  // namespace TR
