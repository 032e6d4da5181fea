#include "servicemonitoring/AcsSettings.h"

#include "model/Storage.h"
#include "servicemonitoring/ServiceMonitoringTree.h"

namespace TR {

AcsSettings AcsSettings::copiedFrom(Storage& storage) {
    using ServiceMonitoringTree::address;
    const pthread_helper::scoped_lock lock(storage.getStorageMutex());
    AcsSettings copy;
    copy.reportSamples = storage.getValueCopy(address(ServiceMonitoringTree::kReportSamples));
    copy.sampleEnable = storage.getValueCopy(address(ServiceMonitoringTree::kSampleEnable));
    copy.sampleInterval = storage.getValueCopy(address(ServiceMonitoringTree::kSampleInterval));
    copy.timeReference = storage.getValueCopy(address(ServiceMonitoringTree::kTimeReference));
    copy.totalReset = storage.getValueCopy(address(ServiceMonitoringTree::kTotalReset));
    copy.mainStreamEnable = storage.getValueCopy(address(ServiceMonitoringTree::kMainStreamEnable));
    return copy;
}

std::optional<std::int64_t> AcsSettings::number(const Value& setting) {
    if (setting.getType() != Value::Type::Integer) return std::nullopt;
    return setting.getInt64();
}

}  // namespace TR
