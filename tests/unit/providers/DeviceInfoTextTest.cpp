#include "providers/DeviceInfoDataProvider.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using namespace TR;

TEST(DeviceInfoTextTest, UpTimeIsWhatStandsBeforeTheFirstPoint) {
    EXPECT_EQ(DeviceInfo::upTime("12345.67 54321.00\n"), "12345");
    EXPECT_EQ(DeviceInfo::upTime("4294967296.00 1.00\n"), "4294967296");
    EXPECT_EQ(DeviceInfo::upTime("12345 54321\n"), "");
    EXPECT_EQ(DeviceInfo::upTime(""), "");
}

TEST(DeviceInfoTextTest, MemoryIsTheTextBetweenTheKeyAndItsUnitOrTheEnd) {
    const std::string file = "MemTotal:        1012345 kB\nMemFree:  17 kB\n";
    EXPECT_EQ(DeviceInfo::memoryStatus(file, "MemTotal:"), "1012345");
    EXPECT_EQ(DeviceInfo::memoryStatus(file, "MemFree:"), "17");
    EXPECT_EQ(DeviceInfo::memoryStatus("MemTotal: 1012345 \n", "MemTotal:"), "1012345");
}

TEST(DeviceInfoTextTest, AMissingMemoryKeyReadsFromTheKeysLengthOn) {
    // npos plus the key's length is the length less one.
    EXPECT_EQ(DeviceInfo::memoryStatus("0123456789 kB", "MemTotal:"), "89");
    EXPECT_THROW(DeviceInfo::memoryStatus("", "MemTotal:"), std::out_of_range);
}

TEST(DeviceInfoTextTest, TheOuiIsTheFirstSixDigits) {
    EXPECT_EQ(DeviceInfo::manufacturerOui("001A2B3C4D5E"), "001A2B");
    EXPECT_EQ(DeviceInfo::manufacturerOui("001A2B"), "001A2B");
    EXPECT_EQ(DeviceInfo::manufacturerOui("001A2"), "");
    EXPECT_EQ(DeviceInfo::manufacturerOui(""), "");
}

TEST(DeviceInfoTextTest, AProviderWithoutAStoreDoesNothing) {
    DeviceInfoDataProvider provider(nullptr);
    provider.init();
    EXPECT_TRUE(provider.load());
    EXPECT_FALSE(provider.store());
    EXPECT_FALSE(provider.updateValues());
}

}  // namespace
