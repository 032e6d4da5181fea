#include "dbus/BusDispatcher.h"

#include <dbus/dbus.h>

#include <algorithm>
#include <cerrno>
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

short pollEvents(const DBus::Watch& watch) {
    if (!watch.enabled()) return 0;
    const int flags = watch.flags();
    return static_cast<short>(((flags & DBUS_WATCH_READABLE) != 0 ? POLLIN : 0) |
                              ((flags & DBUS_WATCH_WRITABLE) != 0 ? POLLOUT : 0));
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
    while (!leaving_) {
        // A message that came in while another one was dispatched waits in the queue, with no event
        // to tell.
        while (has_something_to_dispatch() && !leaving_) dispatch_pending();
        if (leaving_) return;
        // The wait itself tells when the other end is gone; asking apart would cost a system call
        // for each message.
        if (watches_.empty() || !waitAndHandle()) busLost_ = true;
        if (busLost_) return;
    }
}

void BusDispatcher::leave() {
    leaving_ = true;
    // The counter cannot overflow in practice, and a full one wakes the loop just the same.
    [[maybe_unused]] const int result = eventfd_write(wakeDescriptor_, 1);
}

void BusDispatcher::drain() {
    while (has_something_to_dispatch()) dispatch_pending();
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

bool BusDispatcher::waitAndHandle() {
    polled_.assign(1, {wakeDescriptor_, POLLIN, 0});
    polledWatches_.clear();
    for (const auto& watch : watches_) {
        polled_.push_back(
            {watch->descriptor(), static_cast<short>(pollEvents(*watch) | POLLRDHUP), 0});
        polledWatches_.push_back(watch.get());
    }
    if (poll(polled_.data(), polled_.size(), -1) < 0) return errno == EINTR;
    for (std::size_t i = 0; i < polledWatches_.size(); ++i) {
        const short events = polled_[i + 1].revents;
        if ((events & kGone) != 0) return false;
        handle(polledWatches_[i], events);
    }
    return true;
}

void BusDispatcher::handle(BusWatch* watch, short events) {
    // Handling one watch may take another one back.
    const bool isStillThere = std::any_of(watches_.begin(), watches_.end(),
                                          [&](const auto& other) { return other.get() == watch; });
    if (!isStillThere || events == 0) return;
    watch->handle(((events & POLLIN) != 0 ? DBUS_WATCH_READABLE : 0) |
                  ((events & POLLOUT) != 0 ? DBUS_WATCH_WRITABLE : 0));
}

DBus::Watch* BusDispatcher::add_watch(DBus::Watch::Internal* internal) {
    watches_.push_back(std::make_unique<BusWatch>(internal));
    const pthread_helper::scoped_lock lock(descriptorMutex_);
    busDescriptor_ = watches_.back()->descriptor();
    return watches_.back().get();
}

void BusDispatcher::rem_watch(DBus::Watch* watch) {
    forgetDescriptor();
    watches_.erase(std::remove_if(watches_.begin(), watches_.end(),
                                  [&](const auto& other) { return other.get() == watch; }),
                   watches_.end());
}

void BusDispatcher::forgetDescriptor() {
    const pthread_helper::scoped_lock lock(descriptorMutex_);
    busDescriptor_ = -1;
}

}  // namespace TR
