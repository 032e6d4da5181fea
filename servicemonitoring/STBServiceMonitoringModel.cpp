#include "servicemonitoring/STBServiceMonitoringModel.h"

namespace TR {

void STBServiceMonitoringModel::MainStream::setEnable(bool enable) {
    enable_ = enable;
    status_ = enable ? kStatusEnabled : kStatusDisabled;
}

void STBServiceMonitoringModel::MainStream::resetTotals() {
    total_ = Total();
    flag_ = 0;
    resetTime_ = NSTime::nowRelative();
}

void STBServiceMonitoringModel::MainStream::countDiscontinuities(int reading) {
    // In 64 bits: from the smallest to the biggest reading is more than an int holds.
    const std::int64_t growth = std::int64_t{reading} - lastDiscontinuityReading_;
    if (growth > 0) total_.packetDiscontinuityCounter += static_cast<std::uint32_t>(growth);
    lastDiscontinuityReading_ = reading;
}

}  // namespace TR
