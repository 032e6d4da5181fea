#pragma once

#include "stb/inc/private/pthread_helper.h"

#include <dbus-c++/dbus.h>

#include <atomic>
#include <list>

namespace TR {

/// The binding's dispatcher with another loop. The binding's spins for ever when it is left before
/// it is entered, and spins or sleeps for ever when the bus dies; this one remembers `leave()` and
/// ends when the bus hangs up. While something waits to be sent it reads nothing. Serves one
/// connection; `enter()`, `waitUntilSent()` and the watch operations run on the D-Bus thread,
/// `leave()` and `isBusLost()` on any.
class BusDispatcher : public DBus::BusDispatcher {
  public:
    /// Throws std::system_error when no descriptor is free.
    BusDispatcher();
    ~BusDispatcher() override;

    /// Serves the connection until `leave()` was called, before or meanwhile, or the bus is lost.
    void enter() override;
    /// Ends `enter()`, also one that has not begun yet; may be called again.
    void leave() override;
    /// Takes back an earlier `leave()`; before a new start, while nobody is in `enter()`.
    void rearm();

    /// Waits until libdbus has sent all that it was given. False when the loop is to end; the
    /// caller then carries out nothing more.
    bool waitUntilSent();

    /// True when the other end of the connection is gone. Looks at the socket itself, so that it
    /// shows also while the D-Bus thread is busy with a call.
    bool isBusLost();

    DBus::Watch* add_watch(DBus::Watch::Internal* internal) override;
    void rem_watch(DBus::Watch* watch) override;

  private:
    /// The loop reads its state before each poll, so a toggle needs no action.
    struct BusWatch : DBus::Watch {
        using DBus::Watch::Watch;
        void toggle() override {}
    };

    bool isServing() const { return !leaving_ && !busLost_; }
    /// libdbus's watch of this kind, DBUS_WATCH_READABLE or DBUS_WATCH_WRITABLE, when it is
    /// enabled; else null.
    BusWatch* enabledWatch(int kind);
    void handle(int kind);
    /// One wait. A lost bus is noted.
    void waitAndHandle();

    const int wakeDescriptor_;  ///< eventfd, owned
    std::atomic<bool> leaving_{false};
    std::atomic<bool> busLost_{false};
    std::list<BusWatch> watches_;  ///< D-Bus thread only; libdbus keeps pointers to them
    /// Guards the descriptor: libdbus takes its watches back before it closes it, and waits here
    /// while another thread looks at it.
    pthread_helper::mutex descriptorMutex_;
    int busDescriptor_ KELM_GUARDED_BY(descriptorMutex_) = -1;  ///< libdbus's, borrowed
};

}  // namespace TR
