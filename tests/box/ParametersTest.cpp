#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

using List = std::vector<std::string>;

constexpr char kUpTime[] = "Device.DeviceInfo.UpTime";
constexpr char kLog[] = "Device.DeviceInfo.DeviceLog";
constexpr char kCode[] = "Device.DeviceInfo.ProvisioningCode";
constexpr char kTemperature[] = "Device.DeviceInfo.TemperatureStatus.TemperatureSensor.1.Value";
const std::string kConfig = "Device.Services.STBService.1.X_Kelm.Config.";
constexpr char kNotify[] = "ubus -t 1 call tr069 notify";

class ParametersTest : public DaemonTest {
  protected:
    void SetUp() override { start(); }

    long long uptime() { return std::atoll(value(kUpTime).c_str()); }
};

long long kernelUptime() {
    return std::atoll(box::readFile("/proc/uptime").c_str());
}

TEST_F(ParametersTest, UpTimeFollowsTheRealClock) {
    const long long before = kernelUptime();
    waitForCycles(1);
    EXPECT_GE(uptime(), before);
    EXPECT_LE(uptime(), kernelUptime());
    const long long first = uptime();
    waitForCycles(1);
    EXPECT_GT(uptime(), first);
}

TEST_F(ParametersTest, TheProvisioningCodeReachesUciAndReadsBack) {
    EXPECT_EQ(client().getWritable(kCode).text, "1");
    ASSERT_TRUE(client().set(kCode, "code 17").ok);
    EXPECT_EQ(box::calls("uci"), List{"uci -q set easycwmp.@local[0].provisioning_code=code 17"});
    EXPECT_EQ(value(kCode), "code 17");
    EXPECT_EQ(box::calls("uci").back(), "uci -q get easycwmp.@local[0].provisioning_code");
    waitForCycles(1);
    EXPECT_EQ(value(kCode), "code 17");
}

TEST_F(ParametersTest, TheSyslogHostIsItsFileAndTheEmptyTextDeletesIt) {
    const std::string host = kConfig + "SyslogHost";
    ASSERT_TRUE(client().set(host, "10.1.2.3").ok);
    EXPECT_EQ(box::readFile("/var/kelm/syslog_host"), "10.1.2.3");
    EXPECT_EQ(value(host), "10.1.2.3");
    waitForCycles(1);
    EXPECT_EQ(box::readFile("/var/kelm/syslog_host"), "10.1.2.3");
    ASSERT_TRUE(client().set(host, "").ok);
    EXPECT_NE(std::system("test -e /var/kelm/syslog_host"), 0);
    EXPECT_EQ(value(host), "");
}

TEST_F(ParametersTest, TheTimeZoneShowsWhatAnotherProgramWrites) {
    box::writeFile("/var/kelm/TZ", "MSK-3");
    EXPECT_EQ(value(kConfig + "TimeZone"), "MSK-3");
    box::writeFile("/var/kelm/TZ", "CET-1CEST\n");
    EXPECT_EQ(value(kConfig + "TimeZone"), "CET-1CEST\n");
}

TEST_F(ParametersTest, TheConfigurationParametersAreWritableAndNothingElseOfTheBranchIs) {
    for (const char* name :
         {"UpdateType", "UpdateServer", "TimeZone", "ProvisionServer", "SyslogHost"}) {
        EXPECT_EQ(client().getWritable(kConfig + name).text, "1") << name;
        EXPECT_EQ(client().getForcedInform(kConfig + name).text, "0") << name;
    }
    EXPECT_EQ(client().getWritable("Device.Services.STBService.1.Enable").text, "0");
}

TEST_F(ParametersTest, AWatchedChangeRunsTheNotifyCommandOnceThatCycle) {
    watch({kLog});
    box::writeFile("/tmp/syslog", "something happened\n");
    ASSERT_TRUE(box::waitUntil([] { return !box::calls("ubus").empty(); }));
    EXPECT_EQ(client().checkValueChange().text, change(kLog, value(kLog)));
    EXPECT_NE(value(kLog).find("something happened\\n"), std::string::npos);
    EXPECT_EQ(box::calls("ubus"), List{kNotify});
}

TEST_F(ParametersTest, UpTimeAndTheLogTogetherNotifyOncePerCycleInTableOrder) {
    watch({kUpTime, kLog});
    box::writeFile("/tmp/syslog", "x\n");
    ASSERT_TRUE(box::waitUntil([] { return !box::calls("ubus").empty(); }));
    EXPECT_EQ(client().checkValueChange().text,
              change(kUpTime, value(kUpTime)) + change(kLog, value(kLog)));
    EXPECT_EQ(box::calls("ubus"), List{kNotify});
}

TEST_F(ParametersTest, ACycleWithoutAWatchedChangeEmptiesThePendingChanges) {
    watch({kTemperature});
    box::writeFile("/sys/class/thermal/thermal_zone0/temp", "61000\n");
    ASSERT_TRUE(box::waitUntil([] { return !box::calls("ubus").empty(); }));
    EXPECT_EQ(client().checkValueChange().text, change(kTemperature, "61000"));
    EXPECT_TRUE(box::waitUntil([this] { return client().checkValueChange().text.empty(); }));
    EXPECT_EQ(box::calls("ubus"), List{kNotify});
}

TEST_F(ParametersTest, AnUnwatchedChangeNotifiesNobody) {
    watch({"Device.DeviceInfo.Manufacturer"});
    waitForCycles(2);
    EXPECT_TRUE(box::calls("ubus").empty());
    EXPECT_EQ(client().checkValueChange().text, "");
}

TEST_F(ParametersTest, FreeMemoryStaysAsItWasAtTheStart) {
    const std::string free = value("Device.DeviceInfo.MemoryStatus.Free");
    EXPECT_FALSE(free.empty());
    std::string used(64U << 20, 'x');
    waitForCycles(1);
    EXPECT_EQ(value("Device.DeviceInfo.MemoryStatus.Free"), free);
}

TEST_F(ParametersTest, TheSerialNumberIsTheRealInterfacesAddress) {
    EXPECT_EQ(value("Device.DeviceInfo.SerialNumber"), "001A2B3C4D5E");
    EXPECT_EQ(value("Device.DeviceInfo.ManufacturerOUI"), "001A2B");
}

TEST_F(ParametersTest, ListingParametersOmitsTheObjects) {
    const List parameters = client().listParametersOnly().list;
    EXPECT_LT(parameters.size(), client().listAddresses().list.size());
    for (const std::string& parameter : parameters) EXPECT_NE(parameter.back(), '.') << parameter;
}

}  // namespace
