#pragma once

#include "model/Storage.h"
#include "servicemonitoring/STBServiceMonitoringModel.h"
#include "stb/src/common/NSTime.h"

#include <cstdint>
#include <string>

namespace TR {

/// How service monitoring looks in the tree: names, texts and the main stream. A caller that
/// publishes holds the store mutex.
namespace ServiceMonitoringTree {

constexpr char kSampleEnable[] = "SampleEnable";
constexpr char kSampleState[] = "SampleState";
constexpr char kSampleInterval[] = "SampleInterval";
constexpr char kReportSamples[] = "ReportSamples";
constexpr char kFetchSamples[] = "FetchSamples";
constexpr char kTimeReference[] = "TimeReference";
constexpr char kForceSample[] = "ForceSample";
constexpr char kMainStreamCount[] = "MainStreamNumberOfEntries";
constexpr char kMainStreamEnable[] = "MainStream.1.Enable";
constexpr char kTotalReset[] = "MainStream.1.Total.Reset";
constexpr char kReportStartTime[] = "ReportStartTime";
constexpr char kReportEndTime[] = "ReportEndTime";

/// The full path of a name below `Device.Services.STBService.1.ServiceMonitoring.`.
Address address(const std::string& name);

/// The value as the ACS may write it.
Value writable(Value value);

/// "Disabled", "Enabled", "Trigger"; empty for any other state.
Value sampleStateText(std::uint32_t state);
/// Local calendar time with the name of its zone.
Value timeText(const NSTime& time);

/// The object nodes of the service and its main stream.
void publishObjects(Storage& storage) KELM_REQUIRES(storage.getStorageMutex());
/// The main stream's settings, totals and sample lists. The reset trigger reads 0.
void publishMainStream(Storage& storage, const STBServiceMonitoringModel::MainStream& stream)
    KELM_REQUIRES(storage.getStorageMutex());

}  // namespace ServiceMonitoringTree

}  // namespace TR
