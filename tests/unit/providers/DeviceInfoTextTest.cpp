#include "providers/DeviceInfoDataProvider.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

using namespace TR;

TEST(DeviceInfoTextTest, UpTimeIsWhatStandsBeforeTheFirstPoint) {
    EXPECT_EQ(DeviceInfo::upTime("12345.67 54321.00\n"), "12345");
}

TEST(DeviceInfoTextTest, UpTimeWithoutAPointIsEmpty) {
    EXPECT_EQ(DeviceInfo::upTime("12345 54321\n"), "");
    EXPECT_EQ(DeviceInfo::upTime(""), "");
}

TEST(DeviceInfoTextTest, UpTimeBeyond32BitsIsPassedOn) {
    EXPECT_EQ(DeviceInfo::upTime("4294967296.00 1.00\n"), "4294967296");
}

TEST(DeviceInfoTextTest, MemoryIsTheNumberOfKilobytesAfterTheKey) {
    EXPECT_EQ(
        DeviceInfo::memoryStatus("MemTotal:        1012345 kB\nMemFree:  17 kB\n", "MemTotal:"),
        "1012345");
    EXPECT_EQ(
        DeviceInfo::memoryStatus("MemTotal:        1012345 kB\nMemFree:  17 kB\n", "MemFree:"),
        "17");
}

TEST(DeviceInfoTextTest, MemoryWithoutAUnitReachesToTheEnd) {
    EXPECT_EQ(DeviceInfo::memoryStatus("MemTotal: 1012345 \n", "MemTotal:"), "1012345");
}

TEST(DeviceInfoTextTest, AMissingMemoryKeyReadsFromTheKeysLengthOn) {
    // npos plus the key's length is the length less one.
    EXPECT_EQ(DeviceInfo::memoryStatus("0123456789 kB", "MemTotal:"), "89");
}

TEST(DeviceInfoTextTest, AMissingMemoryKeyInATooShortTextThrows) {
    EXPECT_THROW(DeviceInfo::memoryStatus("", "MemTotal:"), std::out_of_range);
}

TEST(DeviceInfoTextTest, TheOuiIsTheFirstSixDigits) {
    EXPECT_EQ(DeviceInfo::manufacturerOui("001A2B3C4D5E"), "001A2B");
    EXPECT_EQ(DeviceInfo::manufacturerOui("001A2B"), "001A2B");
}

TEST(DeviceInfoTextTest, FiveDigitsOrFewerMakeNoOui) {
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
