#include "servicemonitoring/ServiceMonitoring.h"

#include "model/Storage.h"
#include "servicemonitoring/ServiceMonitoringTree.h"
#include "stb/src/amlogic/STBAml.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>

namespace TR {

namespace {

namespace Tree = ServiceMonitoringTree;

constexpr char kDiscontinuityCounter[] = "/sys/class/tsdemux/discontinue_counter";

constexpr std::uint32_t kSamplingDisabled = 0;
constexpr std::uint32_t kSamplingEnabled = 1;

constexpr std::uint32_t kLongestRefusedIntervalSeconds = 9;
constexpr std::uint32_t kMostReportSamplesToSwitch = 100;

// What every cycle takes back from the store.
constexpr const char* kSettings[] = {
    Tree::kFetchSamples,  Tree::kReportSamples, Tree::kSampleEnable,    Tree::kSampleInterval,
    Tree::kTimeReference, Tree::kTotalReset,    Tree::kMainStreamEnable};

/// Copies of the settings in their order, taken under one lock; a missing one is `Undefined`.
std::array<Value, std::size(kSettings)> copySettings(Storage& storage) {
    std::array<Value, std::size(kSettings)> copies;
    const pthread_helper::scoped_lock lock(storage.getStorageMutex());
    for (std::size_t i = 0; i < copies.size(); ++i)
        copies[i] = storage.getValueCopy(Tree::address(kSettings[i]));
    return copies;
}

std::optional<std::int64_t> number(const Value& setting) {
    if (setting.getType() != Value::Type::Integer) return std::nullopt;
    return setting.getInt64();
}

bool isTrigger(const Value& setting) {
    return number(setting).value_or(0) != 0;
}

}  // namespace

void ServiceMonitoring::init() {
    timeReference_ = Utils::getBeginningTimeval(NSTime::now(), Utils::TimeUnit::Day);
    if (storage() == nullptr) return;
    const std::pair<const char*, Value> parameters[] = {
        {Tree::kSampleEnable, Tree::writable(Value(sampleEnable_))},
        {Tree::kSampleState, Tree::sampleStateText(sampleState_)},
        {Tree::kSampleInterval, Tree::writable(Value(sampleInterval_))},
        {Tree::kReportSamples, Value(reportSamples_)},
        {Tree::kFetchSamples, Value(fetchSamples_)},
        {Tree::kTimeReference, Tree::timeText(timeReference_)},
        {Tree::kForceSample, Value(forceSample_)},
        {Tree::kMainStreamCount, Value(static_cast<long long>(mainStreams_.size()))},
    };
    const pthread_helper::scoped_lock lock(storage()->getStorageMutex());
    for (const auto& [name, value] : parameters) storage()->set(Tree::address(name), value);
}

bool ServiceMonitoring::updateValues() {
    if (storage() == nullptr) return false;
    takeSettings();
    return load() && store();
}

bool ServiceMonitoring::load() {
    MainStream& stream = mainStreams_.front();
    if (!stream.isEnabled()) return true;
    const auto reading = STBAml::getSys<int>(kDiscontinuityCounter);
    if (reading) stream.countDiscontinuities(*reading);
    return true;
}

bool ServiceMonitoring::store() {
    if (storage() == nullptr) return false;
    const pthread_helper::scoped_lock lock(storage()->getStorageMutex());
    adoptLateWrites();
    const MainStream& stream = mainStreams_.front();
    Tree::publishObjects(*storage());
    storage()->set(Tree::address(Tree::kSampleState), Tree::sampleStateText(sampleState_));
    Tree::publishMainStream(*storage(), stream);
    knownMainStreamEnable_ = Value(stream.isEnabled());
    storage()->set(Tree::address(Tree::kReportStartTime), Tree::timeText(reportStartTime_));
    storage()->set(Tree::address(Tree::kReportEndTime), Tree::timeText(reportEndTime_));
    return true;
}

// Publishing would overwrite what the ACS has written since this cycle took the settings.
void ServiceMonitoring::adoptLateWrites() {
    const Value enable = storage()->getValueCopy(Tree::address(Tree::kMainStreamEnable));
    if (enable != knownMainStreamEnable_) takeMainStreamEnable(enable);
    if (isTrigger(storage()->getValueCopy(Tree::address(Tree::kTotalReset))))
        mainStreamTotalReset(1);
}

void ServiceMonitoring::takeSettings() {
    const auto [fetchSamples, reportSamples, sampleEnable, sampleInterval, timeReference,
                totalReset, mainStreamEnable] = copySettings(*storage());
    if (const auto count = number(reportSamples)) takeReportSamples(*count);
    // Before the interval: when both are written at once, the interval takes effect in this cycle
    // and the switch in the next.
    if (const auto enable = number(sampleEnable)) setSampleEnable(*enable != 0);
    if (const auto seconds = number(sampleInterval)) takeSampleInterval(*seconds);
    if (timeReference.getType() == Value::Type::String) timeReference_ = NSTime::now();
    if (isTrigger(totalReset)) takeTotalReset();
    takeMainStreamEnable(mainStreamEnable);
}

void ServiceMonitoring::takeMainStreamEnable(const Value& setting) {
    if (const auto enable = number(setting)) setMainStreamEnable(*enable != 0, 1);
    knownMainStreamEnable_ = setting;
}

void ServiceMonitoring::takeReportSamples(std::int64_t count) {
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    reportSamples_ = static_cast<std::uint32_t>(std::clamp<std::int64_t>(count, 0, most));
    mainStreams_.front().resizeSamples(reportSamples_);
}

void ServiceMonitoring::takeSampleInterval(std::int64_t seconds) {
    // Cut to 32 bits, a number out of range could pass for a good interval.
    if (seconds < 0 || seconds > std::numeric_limits<std::uint32_t>::max()) return;
    setSampleInterval(static_cast<std::uint32_t>(seconds));
}

// One lock round both halves: a write before it is served by this reset, a write after it finds the
// trigger released.
void ServiceMonitoring::takeTotalReset() {
    const pthread_helper::scoped_lock lock(storage()->getStorageMutex());
    mainStreamTotalReset(1);
    storage()->set(Tree::address(Tree::kTotalReset), Tree::writable(Value(0)));
}

void ServiceMonitoring::setSampleEnable(bool enable) {
    if (enable == sampleEnable_ || sampleInterval_ <= kLongestRefusedIntervalSeconds) return;
    switchSampling(enable);
}

// Switching off keeps the samples and the report times readable.
void ServiceMonitoring::switchSampling(bool enable) {
    if (reportSamples_ < 1 || reportSamples_ > kMostReportSamplesToSwitch) return;
    sampleEnable_ = enable;
    sampleState_ = enable ? kSamplingEnabled : kSamplingDisabled;
    if (enable) restartReport(Utils::TimeUnit::Minute);
}

void ServiceMonitoring::setSampleInterval(std::uint32_t seconds) {
    if (seconds == sampleInterval_ || seconds <= kLongestRefusedIntervalSeconds) return;
    sampleInterval_ = seconds;
    restartReport(Utils::TimeUnit::Hour);
}

void ServiceMonitoring::restartReport(Utils::TimeUnit unit) {
    mainStreams_.front().restartSamples(reportSamples_);
    reportStartTime_ = Utils::getBeginningTimeval(NSTime::now(), unit);
    reportEndTime_ = reportStartTime_;
}

void ServiceMonitoring::setReportSamples(std::uint32_t count) {
    if (count > reportSamples_) mainStreams_.front().resizeSamples(count);
}

void ServiceMonitoring::setMainStreamEnable(bool enable, unsigned index) {
    if (MainStream* const found = stream(index)) found->setEnable(enable);
}

void ServiceMonitoring::setMainStreamServiceType(const std::string& serviceType, unsigned index) {
    if (MainStream* const found = stream(index)) found->setServiceType(serviceType);
}

void ServiceMonitoring::setMainStreamGmin(std::uint32_t gmin, unsigned index) {
    if (MainStream* const found = stream(index)) found->setGmin(gmin);
}

void ServiceMonitoring::setMainStreamSevereLossMinDistance(std::uint32_t distance, unsigned index) {
    if (MainStream* const found = stream(index)) found->setSevereLossMinDistance(distance);
}

void ServiceMonitoring::setMainStreamSevereLossMinLength(std::uint32_t length, unsigned index) {
    if (MainStream* const found = stream(index)) found->setSevereLossMinLength(length);
}

void ServiceMonitoring::mainStreamTotalReset(unsigned index) {
    if (MainStream* const found = stream(index)) found->resetTotals();
}

const ServiceMonitoring::MainStream* ServiceMonitoring::mainStream(unsigned index) const {
    return index >= 1 && index <= mainStreams_.size() ? &mainStreams_[index - 1] : nullptr;
}

ServiceMonitoring::MainStream* ServiceMonitoring::stream(unsigned index) {
    return const_cast<MainStream*>(mainStream(index));
}

}  // namespace TR
