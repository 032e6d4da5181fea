#include "trctl/Connection.h"

#include "client/BusAddress.h"

namespace trctl {

Connection::Connection(const std::string& bus, std::chrono::milliseconds time) {
    std::string reason, advice;
    for (const client::BusPlace& place : client::busPlaces(bus)) {
        if (!reason.empty()) tried_ += ": " + reason;
        tried_ += "\nTried " + place.address + " (" + place.source + ')';
        try {
            daemon_ = std::make_unique<client::BusDaemon>(place.address, time);
            return;
        } catch (const client::Unreachable& loss) {
            reason = loss.what();
            advice = loss.advice();
        }
    }
    throw client::Unreachable(reason, advice + tried_);
}

}  // namespace trctl
