#pragma once

#include "model/Value.h"
#include "providers/BaseDataProvider.h"

#include <string>

namespace TR {

namespace DeviceInfo {

/// Whole seconds since boot, from the text of /proc/uptime (seconds with a fraction, twice); empty
/// without a decimal point.
std::string upTime(const std::string& procUptime);

/// The number of kilobytes after \p key (such as "MemTotal:") in the text of /proc/meminfo. Without
/// the key the text is read from the key's length on, and std::out_of_range is thrown when it is
/// shorter. The kernel always writes both keys that are asked for.
std::string memoryStatus(const std::string& procMeminfo, const std::string& key);

/// The first six of a hardware address's digits; empty when there are fewer.
std::string manufacturerOui(const std::string& macAddress);

}  // namespace DeviceInfo

/// `Device.DeviceInfo.`: the identity that every Inform carries, the provisioning code that the ACS
/// writes (kept in UCI), and live figures: up time, temperature, processes, the system log. Every
/// value is a text. Identity and memory figures are read once, at start. Holds the store mutex for
/// the whole of `init()` and `store()`, commands and log files included.
class DeviceInfoDataProvider : public BaseDataProvider {
  public:
    using BaseDataProvider::BaseDataProvider;

    /// Creates what is read once; called once, before the first refresh. Without a store it does
    /// nothing.
    void init();

    bool updateValues() override { return load() && store(); }
    bool load() override { return true; }
    /// Writes the live figures; false without a store.
    bool store() override;

  private:
    std::string specVersion() const { return "1.0"; }
    std::string manufacturer() const { return "KELM"; }
    std::string productClass() const { return "STB"; }
    std::string temperatureName() const { return "CPU"; }
    std::string macAddress() const;
    std::string serialNumber() const { return macAddress(); }
    std::string manufacturerOui() const { return DeviceInfo::manufacturerOui(macAddress()); }
    std::string hardwareVersion() const;
    std::string softwareVersion() const;
    std::string xKelmChipId() const;
    std::string deviceId() const;
    std::string modelName() const { return deviceId(); }
    std::string description() const { return "KELM Orbit " + deviceId(); }
    std::string upTime() const;
    std::string memoryStatus(std::string key) const;
    std::string memoryStatusTotal() const { return memoryStatus("MemTotal:"); }
    std::string memoryStatusFree() const { return memoryStatus("MemFree:"); }
    std::string processNumberOfEntries() const;
    std::string temperatureValue() const;
    std::string deviceLog() const;

    void set(const char* name, Value value) KELM_REQUIRES(storage()->getStorageMutex());
    void initIdentity() KELM_REQUIRES(storage()->getStorageMutex());
    void setupForcedInform(const std::string& path, const Value& value)
        KELM_REQUIRES(storage()->getStorageMutex());
    void setupStoredInConfig(const std::string& path, const std::string& configPath)
        KELM_REQUIRES(storage()->getStorageMutex());
};

}  // namespace TR
