#include "tests/support/StoreTest.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using TR::Address;
using TR::Value;
using Addresses = std::vector<Address>;

const Address kUpTime("Device.DeviceInfo.UpTime");

using StorageTest = StoreTest;

TEST_F(StorageTest, TheFirstFillOfAnAddressRecordsNoChangeAndLaterOnesTheLast) {
    EXPECT_FALSE(storage_.set(kUpTime, Value(1LL)));
    EXPECT_TRUE(storage_.updates().empty());
    for (const Value& change : {Value(2), Value(3), Value(std::string("3"))}) {
        EXPECT_TRUE(storage_.set(kUpTime, change));
        ASSERT_EQ(storage_.updates().size(), 1U);
        EXPECT_EQ(storage_.updates().at(kUpTime), change);
    }
}

TEST_F(StorageTest, FillingAnEntryThatIndexingMadeIsNoChange) {
    EXPECT_FALSE(storage_.hasAddress(kUpTime));
    EXPECT_EQ(storage_[kUpTime].getType(), Value::Type::Undefined);
    EXPECT_TRUE(storage_.hasAddress(kUpTime));
    EXPECT_FALSE(storage_.set(kUpTime, Value(1LL)));
    EXPECT_TRUE(storage_.updates().empty());
}

TEST_F(StorageTest, AnEqualValueRecordsNothingButReplacesTheSettings) {
    Value first(1LL);
    first.setMutableByUser(true);
    first.setPathInConfig("a.b.c");
    storage_.set(kUpTime, first);
    Value second(1LL);
    second.setForcedInform(true);
    EXPECT_FALSE(storage_.set(kUpTime, second));
    EXPECT_TRUE(storage_.updates().empty());
    EXPECT_FALSE(storage_[kUpTime].isMutableByUser());
    EXPECT_EQ(storage_[kUpTime].getPathInConfig(), "");
    EXPECT_TRUE(storage_[kUpTime].isForcedInform());
}

TEST_F(StorageTest, ClearingForgetsTheChangesOnly) {
    storage_.set(kUpTime, Value(1LL));
    storage_.set(kUpTime, Value(2LL));
    storage_.clearUpdates();
    EXPECT_TRUE(storage_.updates().empty());
    EXPECT_EQ(storage_[kUpTime], Value(2LL));
}

TEST_F(StorageTest, SetWithCheckReplacesElementsOfTheSameTypeAndNothingElse) {
    EXPECT_FALSE(storage_.setWithCheck(kUpTime, Value(1LL)));
    EXPECT_TRUE(storage_.listAddresses().empty());
    storage_.set(kUpTime, Value(1LL));
    EXPECT_TRUE(storage_.setWithCheck(kUpTime, Value(2LL)));
    EXPECT_FALSE(storage_.setWithCheck(kUpTime, Value(std::string("x"))));
    EXPECT_EQ(storage_[kUpTime], Value(2LL));
    EXPECT_TRUE(storage_.updates().empty());
}

TEST_F(StorageTest, RemovingAnObjectLeavesItsChildren) {
    storage_.set(Address("Device.DeviceInfo."), Value::Object());
    storage_.set(kUpTime, Value(1LL));
    EXPECT_TRUE(storage_.remove(Address("Device.DeviceInfo.")));
    EXPECT_EQ(storage_.listAddresses(), Addresses{kUpTime});
}

TEST_F(StorageTest, RemovingLeavesTheRecordedChangeAndAnUnknownAddressIsRefused) {
    EXPECT_FALSE(storage_.remove(kUpTime));
    storage_.set(kUpTime, Value(1LL));
    storage_.set(kUpTime, Value(2LL));
    EXPECT_TRUE(storage_.remove(kUpTime));
    EXPECT_EQ(storage_.updates().size(), 1U);
}

TEST_F(StorageTest, AddressesAreListedInOrderAndParametersWithoutTheObjects) {
    for (const char* path : {"b", "a.b", "A"}) storage_.set(Address(path), Value(1LL));
    storage_.set(Address("a."), Value::Object());
    storage_[Address("Unknown")];
    EXPECT_EQ(storage_.listAddresses(), (Addresses{Address("A"), Address("Unknown"), Address("a."),
                                                   Address("a.b"), Address("b")}));
    EXPECT_EQ(storage_.listParametersOnly(),
              (Addresses{Address("A"), Address("Unknown"), Address("a.b"), Address("b")}));
}

TEST_F(StorageTest, ACopyOfAnUnknownAddressIsUndefinedAndAddsNothing) {
    EXPECT_EQ(storage_.getValueCopy(kUpTime).getType(), Value::Type::Undefined);
    EXPECT_FALSE(storage_.hasAddress(kUpTime));
}

TEST_F(StorageTest, ACopyOfAPlainValueCarriesItsSettings) {
    Value value(std::string("x"));
    value.setForcedInform(true);
    storage_.set(kUpTime, value);
    const Value copy = storage_.getValueCopy(kUpTime);
    EXPECT_EQ(copy, value);
    EXPECT_TRUE(copy.isForcedInform());
}

}  // namespace
