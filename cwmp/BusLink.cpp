#include "cwmp/BusLink.h"

#include "cwmp/Log.h"

#include <algorithm>

namespace cwmp {

namespace {

// The last parameter that the daemon's first cycle adds.
constexpr char kLast[] = "Device.DeviceInfo.DeviceLog";

bool isThroughFirstCycle(client::Daemon& daemon) {
    const auto names = daemon.parameters();
    return std::find(names.begin(), names.end(), kLast) != names.end();
}

}  // namespace

BusLink::BusLink(std::string address, Deadline::Milliseconds wait, Deadline& deadline,
                 std::function<bool()> pause)
    : address_(std::move(address)), wait_(wait), deadline_(deadline), pause_(std::move(pause)) {}

client::BusDaemon& BusLink::connected() {
    if (bus_ == nullptr || !bus_->isConnected())
        bus_ = std::make_unique<client::BusDaemon>(address_, deadline_.left());
    bus_->setTimeLeft(deadline_.left());
    return *bus_;
}

client::Daemon& BusLink::daemon() {
    if (!hasWaited_) awaitFirstCycle();
    return connected();
}

// A daemon that is there and hangs has used up the time of a command, which is enough.
void BusLink::awaitFirstCycle() {
    const Deadline end(wait_);
    hasWaited_ = true;
    std::string reason = "the daemon's first cycle is not over";
    do {
        deadline_ = Deadline(kTimePerCommand);
        try {
            if (isThroughFirstCycle(connected())) {
                deadline_ = Deadline(kTimePerCommand);
                return;
            }
        } catch (const client::Unreachable& loss) {
            reason = loss.what();
        }
        if (deadline_.isOver()) break;
    } while (!end.isOver() && pause_());
    warn("going on without waiting longer: " + reason);
    if (!deadline_.isOver()) deadline_ = Deadline(kTimePerCommand);
}

}  // namespace cwmp
