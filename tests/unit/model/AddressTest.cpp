#include "model/Address.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using TR::Address;

TEST(AddressTest, APrefixComesBeforeTheLongerPathAndAsciiBeforeOtherBytes) {
    EXPECT_LT(Address("Device."), Address("Device.DeviceInfo."));
    EXPECT_FALSE(Address("Device.DeviceInfo.") < Address("Device."));
    EXPECT_LT(Address("z"), Address("\x80"));
}

TEST(AddressTest, EqualityLooksAtLengthAndBytes) {
    EXPECT_TRUE(Address("Device.") == Address(std::string("Device.")));
    EXPECT_FALSE(Address(std::string("a\0b", 3)) == Address("a"));
    EXPECT_FALSE(Address("device.") == Address("Device."));
}

TEST(AddressTest, SetReplacesThePath) {
    Address address("Device.");
    address.set("Device.IP.");
    EXPECT_EQ(address.get(), "Device.IP.");
}

}  // namespace
