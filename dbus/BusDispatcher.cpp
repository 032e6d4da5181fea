#include "dbus/BusDispatcher.h"

#include <dbus/dbus.h>

#include <cerrno>
#include <iterator>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace TR {

namespace {

constexpr short kGone = POLLHUP | POLLERR | POLLNVAL | POLLRDHUP;

int makeWakeDescriptor() {
    const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    return descriptor;
}

void closeOnExec(int descriptor) {
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

}  // namespace

BusDispatcher::BusDispatcher() : wakeDescriptor_(makeWakeDescriptor()) {
    // The binding makes its pipes without this flag; the daemon's commands need not inherit them.
    closeOnExec(_fdunlock[0]);
    closeOnExec(_fdunlock[1]);
}

BusDispatcher::~BusDispatcher() {
    close(wakeDescriptor_);
}

void BusDispatcher::enter() {
    while (isServing()) {
        // A message that came in while another one was dispatched waits in the queue, without an
        // event to report it.
        while (isServing() && has_something_to_dispatch()) dispatch_pending();
        if (isServing()) waitAndHandle();
    }
}

bool BusDispatcher::waitUntilSent() {
    while (isServing() && enabledWatch(DBUS_WATCH_WRITABLE) != nullptr) waitAndHandle();
    return isServing();
}

void BusDispatcher::leave() {
    leaving_ = true;
    // The counter cannot overflow in practice, and a full one wakes the loop just the same.
    [[maybe_unused]] const int result = eventfd_write(wakeDescriptor_, 1);
}

void BusDispatcher::rearm() {
    eventfd_t ignored = 0;
    eventfd_read(wakeDescriptor_, &ignored);
    leaving_ = false;
    busLost_ = false;
}

bool BusDispatcher::isBusLost() {
    if (busLost_) return true;
    const pthread_helper::scoped_lock lock(descriptorMutex_);
    if (busDescriptor_ < 0) return false;
    pollfd bus{busDescriptor_, POLLRDHUP, 0};
    return poll(&bus, 1, 0) > 0 && (bus.revents & kGone) != 0;
}

// The wait itself reports when the other end is gone; a separate look would cost a system call for
// each message.
void BusDispatcher::waitAndHandle() {
    const bool isSending = enabledWatch(DBUS_WATCH_WRITABLE) != nullptr;
    const bool mayRead = !isSending && enabledWatch(DBUS_WATCH_READABLE) != nullptr;
    const int wanted = POLLRDHUP | (isSending ? POLLOUT : 0) | (mayRead ? POLLIN : 0);
    if (watches_.empty()) busLost_ = true;
    if (busLost_) return;
    pollfd polled[] = {{wakeDescriptor_, POLLIN, 0},
                       {watches_.front().descriptor(), static_cast<short>(wanted), 0}};
    if (poll(polled, std::size(polled), -1) < 0) {
        busLost_ = errno != EINTR;
        return;
    }
    const short events = polled[1].revents;
    if ((events & kGone) != 0) {
        busLost_ = true;
        return;
    }
    if ((events & POLLOUT) != 0) handle(DBUS_WATCH_WRITABLE);
    if ((events & POLLIN) != 0) handle(DBUS_WATCH_READABLE);
}

BusDispatcher::BusWatch* BusDispatcher::enabledWatch(int kind) {
    for (BusWatch& watch : watches_)
        if (watch.enabled() && (watch.flags() & kind) != 0) return &watch;
    return nullptr;
}

void BusDispatcher::handle(int kind) {
    if (BusWatch* const watch = enabledWatch(kind)) watch->handle(kind);
}

DBus::Watch* BusDispatcher::add_watch(DBus::Watch::Internal* internal) {
    watches_.emplace_back(internal);
    const pthread_helper::scoped_lock lock(descriptorMutex_);
    busDescriptor_ = watches_.back().descriptor();
    return &watches_.back();
}

void BusDispatcher::rem_watch(DBus::Watch* watch) {
    const pthread_helper::scoped_lock lock(descriptorMutex_);
    busDescriptor_ = -1;
    watches_.remove_if([&](const BusWatch& other) { return &other == watch; });
}

}  // namespace TR
