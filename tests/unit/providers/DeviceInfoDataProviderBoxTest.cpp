#include "model/Storage.h"
#include "providers/DeviceInfoDataProvider.h"
#include "tests/support/Box.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <sys/mount.h>

namespace {

using TR::Address;
using TR::Value;

const std::string kPrefix = "Device.DeviceInfo.";

// The kernel's own file cannot be written; a file bound over it can.
void bindOver(const std::string& path, const std::string& content) {
    const std::string file = "/tmp/bound" + std::to_string(std::hash<std::string>{}(path));
    box::writeFile(file, content);
    ASSERT_EQ(mount(file.c_str(), path.c_str(), nullptr, MS_BIND, nullptr), 0) << path;
}

class DeviceInfoDataProviderTest : public ::testing::Test {
  protected:
    DeviceInfoDataProviderTest() {
        for (const char* log : {"/tmp/syslog", "/tmp/syslog.0"}) std::filesystem::remove(log);
    }

    std::string at(const std::string& name) { return storage_[Address(kPrefix + name)].toString(); }

    TR::Storage storage_;
    TR::DeviceInfoDataProvider provider_{&storage_};
};

TEST_F(DeviceInfoDataProviderTest, InitCreatesExactlyTheOnceReadParameters) {
    provider_.init();
    std::set<std::string> names;
    for (const Address& address : storage_.listAddresses())
        names.insert(address.get().substr(kPrefix.size()));
    EXPECT_EQ(names, (std::set<std::string>{
                         "", "SpecVersion", "Description", "ProvisioningCode", "Manufacturer",
                         "ManufacturerOUI", "ProductClass", "SerialNumber", "HardwareVersion",
                         "SoftwareVersion", "ModelName", "MemoryStatus.", "MemoryStatus.Total",
                         "MemoryStatus.Free", "X_Kelm_ChipID", "ProcessStatus.",
                         "TemperatureStatus.", "TemperatureStatus.TemperatureSensor.1.Name"}));
}

TEST_F(DeviceInfoDataProviderTest, ARefreshAddsExactlyTheLiveParameters) {
    EXPECT_TRUE(provider_.updateValues());
    std::set<std::string> names;
    for (const Address& address : storage_.listAddresses())
        names.insert(address.get().substr(kPrefix.size()));
    EXPECT_EQ(names, (std::set<std::string>{"UpTime", "TemperatureStatus.TemperatureSensor.1.Value",
                                            "ProcessStatus.ProcessNumberOfEntries", "DeviceLog"}));
}

TEST_F(DeviceInfoDataProviderTest, EveryValueIsATextOrAnObject) {
    provider_.init();
    provider_.updateValues();
    for (const Address& address : storage_.listAddresses()) {
        const bool isObject = address.get().back() == '.';
        EXPECT_EQ(storage_[address].getType(), isObject ? Value::Type::Object : Value::Type::String)
            << address.get();
    }
}

TEST_F(DeviceInfoDataProviderTest, OnlyTheIdentityIsForcedIntoInforms) {
    provider_.init();
    provider_.updateValues();
    std::set<std::string> forced;
    for (const Address& address : storage_.listAddresses())
        if (storage_[address].isForcedInform()) forced.insert(address.get().substr(kPrefix.size()));
    EXPECT_EQ(forced, (std::set<std::string>{"SpecVersion", "Description", "Manufacturer",
                                             "ManufacturerOUI", "ProductClass", "SerialNumber",
                                             "HardwareVersion", "SoftwareVersion", "ModelName"}));
}

TEST_F(DeviceInfoDataProviderTest, OnlyTheProvisioningCodeIsWritableAndKeptInUci) {
    provider_.init();
    provider_.updateValues();
    for (const Address& address : storage_.listAddresses()) {
        const Value& value = storage_[address];
        const bool isCode = address.get() == kPrefix + "ProvisioningCode";
        EXPECT_EQ(value.isMutableByUser(), isCode) << address.get();
        EXPECT_EQ(value.getPathInConfig(), isCode ? "easycwmp.@local[0].provisioning_code" : "");
        EXPECT_EQ(value.filePathToStoreValue(), "");
    }
}

TEST_F(DeviceInfoDataProviderTest, TheIdentityIsTheBoxs) {
    box::writeFile("/etc/kelm_deviceid", " \t B410 \n\n");
    box::writeFile("/etc/kelm_firmware.version", "1.2.3\n");
    provider_.init();
    EXPECT_EQ(at("SpecVersion"), "1.0");
    EXPECT_EQ(at("Manufacturer"), "KELM");
    EXPECT_EQ(at("ProductClass"), "STB");
    EXPECT_EQ(at("ModelName"), "B410");
    EXPECT_EQ(at("Description"), "KELM Orbit B410");
    EXPECT_EQ(at("SoftwareVersion"), "1.2.3\n");
    EXPECT_EQ(at("TemperatureStatus.TemperatureSensor.1.Name"), "CPU");
}

TEST_F(DeviceInfoDataProviderTest, TheSerialNumberIsTheHardwareAddressOfEth0) {
    provider_.init();
    EXPECT_EQ(at("SerialNumber"), "001A2B3C4D5E");
    EXPECT_EQ(at("ManufacturerOUI"), "001A2B");
}

TEST_F(DeviceInfoDataProviderTest, WithoutEth0TheSerialNumberAndOuiAreEmpty) {
    ASSERT_EQ(std::system("ip link set eth0 down && ip link set eth0 name other0"), 0);
    provider_.init();
    EXPECT_EQ(at("SerialNumber"), "");
    EXPECT_EQ(at("ManufacturerOUI"), "");
}

TEST_F(DeviceInfoDataProviderTest, TheChipIdentityIsWhatTheToolPrints) {
    provider_.init();
    const auto calls = box::calls("chipid_tool");
    EXPECT_EQ(calls, (std::vector<std::string>{"chipid_tool hwrev", "chipid_tool pertype",
                                               "chipid_tool"}));
    EXPECT_NE(at("HardwareVersion"), "");
    EXPECT_NE(at("X_Kelm_ChipID"), "");
    EXPECT_NE(at("HardwareVersion"), at("X_Kelm_ChipID"));
}

TEST_F(DeviceInfoDataProviderTest, AFailingChipToolLeavesEmptyTexts) {
    box::setFault("chipid_tool", "exit 1");
    provider_.init();
    EXPECT_EQ(at("HardwareVersion"), "");
    EXPECT_EQ(at("X_Kelm_ChipID"), "");
}

TEST_F(DeviceInfoDataProviderTest, MissingFilesLeaveEmptyTexts) {
    for (const char* file : {"/etc/kelm_deviceid", "/etc/kelm_firmware.version",
                             "/sys/class/thermal/thermal_zone0/temp"})
        std::filesystem::remove(file);
    provider_.init();
    provider_.updateValues();
    EXPECT_EQ(at("ModelName"), "");
    EXPECT_EQ(at("Description"), "KELM Orbit ");
    EXPECT_EQ(at("SoftwareVersion"), "");
    EXPECT_EQ(at("TemperatureStatus.TemperatureSensor.1.Value"), "");
}

TEST_F(DeviceInfoDataProviderTest, MemoryIsReadAtTheStartOnly) {
    bindOver("/proc/meminfo", "MemTotal:        1012345 kB\nMemFree:           23456 kB\n");
    provider_.init();
    provider_.updateValues();
    EXPECT_EQ(at("MemoryStatus.Total"), "1012345");
    EXPECT_EQ(at("MemoryStatus.Free"), "23456");
    box::writeFile("/proc/meminfo", "MemTotal: 1 kB\nMemFree: 2 kB\n");
    provider_.updateValues();
    EXPECT_EQ(at("MemoryStatus.Total"), "1012345");
    EXPECT_EQ(at("MemoryStatus.Free"), "23456");
}

TEST_F(DeviceInfoDataProviderTest, UpTimeFollowsTheKernelOnEveryRefresh) {
    bindOver("/proc/uptime", "12345.67 54321.00\n");
    provider_.updateValues();
    EXPECT_EQ(at("UpTime"), "12345");
    box::writeFile("/proc/uptime", "12350.01 54321.00\n");
    provider_.updateValues();
    EXPECT_EQ(at("UpTime"), "12350");
}

TEST_F(DeviceInfoDataProviderTest, TheTemperatureIsTheKernelsFigureTrimmed) {
    box::writeFile("/sys/class/thermal/thermal_zone0/temp", " 54321\n");
    provider_.updateValues();
    EXPECT_EQ(at("TemperatureStatus.TemperatureSensor.1.Value"), "54321");
}

TEST_F(DeviceInfoDataProviderTest, ProcessesAreCountedTwiceARefresh) {
    box::clearCalls("ps");
    provider_.updateValues();
    EXPECT_EQ(box::calls("ps"), (std::vector<std::string>{"ps", "ps"}));
    const std::string count = at("ProcessStatus.ProcessNumberOfEntries");
    EXPECT_FALSE(count.empty());
    EXPECT_EQ(count.find_first_not_of("0123456789"), std::string::npos) << count;
}

TEST_F(DeviceInfoDataProviderTest, WithoutALogFileTheLogIsEmpty) {
    provider_.updateValues();
    EXPECT_EQ(at("DeviceLog"), "");
}

TEST_F(DeviceInfoDataProviderTest, TheLogIsTheEscapedOldFileFollowedDirectlyByTheLiveOne) {
    box::writeFile("/tmp/syslog.0", "old \"one\"\n");
    box::writeFile("/tmp/syslog", "live\tone\n");
    provider_.updateValues();
    EXPECT_EQ(at("DeviceLog"), R"(old \"one\"\nlive\tone\n)");
}

TEST_F(DeviceInfoDataProviderTest, ANulInTheLogHidesNothing) {
    box::writeFile("/tmp/syslog.0", std::string("o\0ld\n", 5));
    box::writeFile("/tmp/syslog", "live");
    provider_.updateValues();
    EXPECT_EQ(at("DeviceLog"), R"(o\u0000ld\nlive)");
}

TEST_F(DeviceInfoDataProviderTest, TheLogStartsWithTheOldestOfThreeHundredAndOneFiles) {
    box::writeFile("/tmp/syslog.301", "never read");
    box::writeFile("/tmp/syslog.300", "oldest,");
    box::writeFile("/tmp/syslog.7", "older,");
    box::writeFile("/tmp/syslog.0", "old,");
    box::writeFile("/tmp/syslog", "live");
    provider_.updateValues();
    EXPECT_EQ(at("DeviceLog"), "oldest,older,old,live");
}

TEST_F(DeviceInfoDataProviderTest, TheStoreMutexIsHeldWhileACommandRuns) {
    box::setFault("ps", "slow 2");
    std::thread refresh([&] { provider_.updateValues(); });
    EXPECT_TRUE(box::waitForCalls("ps"));
    EXPECT_EQ(pthread_mutex_trylock(storage_.getStorageMutex().native()), EBUSY);
    box::setFault("ps", "");
    refresh.join();
}

}  // namespace
