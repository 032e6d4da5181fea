#include "providers/DeviceInfoDataProvider.h"
#include "tests/support/Box.h"
#include "tests/support/StoreTest.h"

#include <gtest/gtest.h>

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
using Names = std::set<std::string>;

const std::string kPrefix = "Device.DeviceInfo.";

// The kernel's own file cannot be written; a file bound over it can.
void bindOver(const std::string& path, const std::string& content) {
    const std::string file = "/tmp/bound" + std::to_string(std::hash<std::string>{}(path));
    box::writeFile(file, content);
    ASSERT_EQ(mount(file.c_str(), path.c_str(), nullptr, MS_BIND, nullptr), 0) << path;
}

class DeviceInfoDataProviderTest : public StoreTest {
  protected:
    DeviceInfoDataProviderTest() {
        for (const char* log : {"/tmp/syslog", "/tmp/syslog.0"}) std::filesystem::remove(log);
    }

    std::string info(const std::string& name) const { return at(kPrefix + name); }

    TR::DeviceInfoDataProvider provider_{&storage_};
};

TEST_F(DeviceInfoDataProviderTest, ARefreshAddsExactlyTheLiveParameters) {
    EXPECT_TRUE(provider_.updateValues());
    EXPECT_EQ(below(kPrefix), (Names{"UpTime", "TemperatureStatus.TemperatureSensor.1.Value",
                                     "ProcessStatus.ProcessNumberOfEntries", "DeviceLog"}));
    EXPECT_EQ(info("DeviceLog"), "");  // there is no log
}

// Names and flags are in the golden listing of the whole tree; types and places do not show there.
TEST_F(DeviceInfoDataProviderTest, EveryValueIsATextOrAnObjectAndOnlyOneIsKeptInUci) {
    provider_.init();
    provider_.updateValues();
    for (const Address& address : storage_.listAddresses()) {
        const Value& value = storage_[address];
        const bool isObject = address.get().back() == '.';
        const bool isCode = address.get() == kPrefix + "ProvisioningCode";
        EXPECT_EQ(value.getType(), isObject ? Value::Type::Object : Value::Type::String)
            << address.get();
        EXPECT_EQ(value.isMutableByUser(), isCode) << address.get();
        EXPECT_EQ(value.getPathInConfig(), isCode ? "easycwmp.@local[0].provisioning_code" : "");
        EXPECT_EQ(value.filePathToStoreValue(), "");
    }
}

TEST_F(DeviceInfoDataProviderTest, TheIdentityIsTheBoxs) {
    box::writeFile("/etc/kelm_deviceid", " \t B410 \n\n");
    box::writeFile("/etc/kelm_firmware.version", "1.2.3\n");
    provider_.init();
    EXPECT_EQ(info("ModelName"), "B410");
    EXPECT_EQ(info("Description"), "KELM Orbit B410");
    EXPECT_EQ(info("SoftwareVersion"), "1.2.3\n");
    EXPECT_EQ(info("SerialNumber"), "001A2B3C4D5E");
    EXPECT_EQ(info("ManufacturerOUI"), "001A2B");
    EXPECT_EQ(
        box::calls("chipid_tool"),
        (std::vector<std::string>{"chipid_tool hwrev", "chipid_tool pertype", "chipid_tool"}));
    EXPECT_NE(info("HardwareVersion"), "");
    EXPECT_NE(info("X_Kelm_ChipID"), "");
    EXPECT_NE(info("HardwareVersion"), info("X_Kelm_ChipID"));
}

TEST_F(DeviceInfoDataProviderTest, MissingSourcesLeaveEmptyTexts) {
    for (const char* file : {"/etc/kelm_deviceid", "/etc/kelm_firmware.version",
                             "/sys/class/thermal/thermal_zone0/temp"})
        std::filesystem::remove(file);
    ASSERT_EQ(std::system("ip link set eth0 down && ip link set eth0 name other0"), 0);
    box::setFault("chipid_tool", "exit 1");
    provider_.init();
    provider_.updateValues();
    EXPECT_EQ(info("Description"), "KELM Orbit ");
    for (const char* name :
         {"ModelName", "SoftwareVersion", "SerialNumber", "ManufacturerOUI", "HardwareVersion",
          "X_Kelm_ChipID", "TemperatureStatus.TemperatureSensor.1.Value"})
        EXPECT_EQ(info(name), "") << name;
}

TEST_F(DeviceInfoDataProviderTest, MemoryIsReadAtTheStartOnly) {
    bindOver("/proc/meminfo", "MemTotal:        1012345 kB\nMemFree:           23456 kB\n");
    provider_.init();
    box::writeFile("/proc/meminfo", "MemTotal: 1 kB\nMemFree: 2 kB\n");
    provider_.updateValues();
    EXPECT_EQ(info("MemoryStatus.Total"), "1012345");
    EXPECT_EQ(info("MemoryStatus.Free"), "23456");
}

TEST_F(DeviceInfoDataProviderTest, UpTimeAndTemperatureAreTheKernelsOnEveryRefresh) {
    bindOver("/proc/uptime", "12345.67 54321.00\n");
    provider_.updateValues();
    EXPECT_EQ(info("UpTime"), "12345");
    box::writeFile("/proc/uptime", "12350.01 54321.00\n");
    box::writeFile("/sys/class/thermal/thermal_zone0/temp", " 54321\n");
    provider_.updateValues();
    EXPECT_EQ(info("UpTime"), "12350");
    EXPECT_EQ(info("TemperatureStatus.TemperatureSensor.1.Value"), "54321");
}

TEST_F(DeviceInfoDataProviderTest, ProcessesAreCountedTwiceARefresh) {
    box::clearCalls("ps");
    provider_.updateValues();
    EXPECT_EQ(box::calls("ps"), (std::vector<std::string>{"ps", "ps"}));
    const std::string count = info("ProcessStatus.ProcessNumberOfEntries");
    EXPECT_FALSE(count.empty());
    EXPECT_EQ(count.find_first_not_of("0123456789"), std::string::npos) << count;
}

TEST_F(DeviceInfoDataProviderTest, TheLogIsTheEscapedOldFileFollowedDirectlyByTheLiveOne) {
    box::writeFile("/tmp/syslog.0", std::string("old \"one\"\0\n", 11));
    box::writeFile("/tmp/syslog", "live\tone\n");
    provider_.updateValues();
    EXPECT_EQ(info("DeviceLog"), R"(old \"one\"\u0000\nlive\tone\n)");
}

TEST_F(DeviceInfoDataProviderTest, TheStoreMutexIsHeldWhileACommandRuns) {
    box::setFault("ps", "slow 2");
    std::thread refresh([&] { provider_.updateValues(); });
    EXPECT_TRUE(box::waitForCalls("ps"));
    EXPECT_FALSE(isStoreFree());
    box::setFault("ps", "");
    refresh.join();
}

}  // namespace
