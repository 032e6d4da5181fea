#pragma once

#include "dbus/BusDispatcher.h"
#include "stb/src/common/STBThread.h"

#include <memory>

class TRDBusAdaptor;

namespace TR {

class Storage;

/// The D-Bus thread: opens the session bus, takes the name `com.kelm.stb.TR`, serves the store
/// there and ends when it is stopped or the bus is gone. Without a bus at start the thread ends
/// with an ERROR line and the rest of the daemon goes on. `start`, `stop` and `isBusLost` are
/// main's; there is one DBusWorker in the process, since its dispatcher is the binding's
/// process-wide default. The store is borrowed and outlives the worker.
class DBusWorker : public STBThread {
  public:
    explicit DBusWorker(Storage* storage);
    ~DBusWorker() override;

    void start();
    /// Makes the dispatcher leave its loop, then waits for the thread. Safe at any point of the
    /// start.
    void stop();
    /// True when a connection that once stood has been lost.
    bool isBusLost() { return dispatcher_.isBusLost(); }

    void run() override;

  private:
    Storage* storage_;
    std::unique_ptr<TRDBusAdaptor> adaptor_;
    BusDispatcher dispatcher_;
};

}  // namespace TR
