#pragma once

#include "model/Value.h"
#include "providers/BaseDataProvider.h"
#include "servicemonitoring/STBServiceMonitoringModel.h"
#include "stb/src/common/CalendarTime.h"
#include "stb/src/common/NSTime.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TR {

/// TR-135 `ServiceMonitoring.`: the sampling settings, which the ACS writes into the store and
/// every cycle takes from there, and the figures of the one main stream. Only the worker thread
/// calls it. The D-Bus thread writes to the store, whose mutex is held for the whole of `init()`
/// and `store()` and never while the counter is read. A write of the ACS in the middle of a cycle
/// is not lost: `store()` takes the main stream's, the next cycle the others.
class ServiceMonitoring : public BaseDataProvider {
  public:
    using MainStream = STBServiceMonitoringModel::MainStream;

    using BaseDataProvider::BaseDataProvider;

    /// Creates the settings; called once, before the first cycle. Without a store nothing is
    /// written.
    void init();

    /// Takes the ACS's settings, then samples and publishes. False without a store.
    bool updateValues() override;
    /// Samples the discontinuity counter while main stream 1 is enabled.
    bool load() override;
    /// Takes what the ACS wrote to the main stream since `updateValues()` took the settings, then
    /// publishes the main stream and the report times. False without a store.
    bool store() override;

    /// Ignored until the interval is at least 10 seconds.
    void setSampleEnable(bool enable);
    /// Less than 10 seconds is ignored.
    void setSampleInterval(std::uint32_t seconds);
    /// Grows or cuts the samples until the next cycle applies the setting again; acts only on more
    /// samples than the setting.
    void setReportSamples(std::uint32_t count);
    // Without an effect on this box.
    void setFetchSamples(std::uint32_t /*count*/) {}
    void setTimeReference(const NSTime& /*time*/) {}
    void forceSample() {}

    // Streams are counted from 1; any other index is ignored.
    void setMainStreamEnable(bool enable, unsigned index);
    void setMainStreamServiceType(const std::string& serviceType, unsigned index);
    void setMainStreamGmin(std::uint32_t gmin, unsigned index);
    void setMainStreamSevereLossMinDistance(std::uint32_t distance, unsigned index);
    void setMainStreamSevereLossMinLength(std::uint32_t length, unsigned index);
    void mainStreamTotalReset(unsigned index);

    /// Null for an index without a stream; borrowed.
    const MainStream* mainStream(unsigned index) const;

  private:
    MainStream* stream(unsigned index);

    void takeSettings();
    void takeReportSamples(std::int64_t count);
    void takeSampleInterval(std::int64_t seconds);
    void takeTotalReset();
    void takeMainStreamEnable(const Value& setting);

    void switchSampling(bool enable);
    void restartReport(Utils::TimeUnit unit);

    void adoptLateWrites() KELM_REQUIRES(storage()->getStorageMutex());

    bool sampleEnable_ = false;
    std::uint32_t sampleState_ = 0;
    std::uint32_t sampleInterval_ = 0;  ///< seconds
    std::uint32_t reportSamples_ = 10;
    std::uint32_t fetchSamples_ = 0;
    NSTime timeReference_;
    bool forceSample_ = false;
    NSTime reportStartTime_;
    NSTime reportEndTime_;
    std::vector<MainStream> mainStreams_ = std::vector<MainStream>(1);
    /// Of `MainStream.1.Enable`, last read or written; another value in the store is a later write.
    Value knownMainStreamEnable_;
};

}  // namespace TR
