#include "model/Storage.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

using TR::Address;
using TR::Storage;
using TR::Value;

const Address kUpTime("Device.DeviceInfo.UpTime");

class StorageTest : public ::testing::Test {
  protected:
    Storage storage_;
};

std::vector<std::string> paths(const std::vector<Address>& addresses) {
    std::vector<std::string> texts;
    for (const Address& address : addresses) texts.push_back(address.get());
    return texts;
}

TEST_F(StorageTest, FirstFillOfANewAddressRecordsNoChange) {
    EXPECT_FALSE(storage_.set(kUpTime, Value(1LL)));
    EXPECT_TRUE(storage_.updates().empty());
}

TEST_F(StorageTest, ADifferentValueIsRecordedAsAChange) {
    storage_.set(kUpTime, Value(1LL));
    EXPECT_TRUE(storage_.set(kUpTime, Value(2LL)));
    ASSERT_EQ(storage_.updates().size(), 1U);
    EXPECT_EQ(storage_.updates().at(kUpTime), Value(2LL));
}

TEST_F(StorageTest, ALaterChangeReplacesTheRecordedOne) {
    for (const long long number : {1LL, 2LL, 3LL}) storage_.set(kUpTime, Value(number));
    ASSERT_EQ(storage_.updates().size(), 1U);
    EXPECT_EQ(storage_.updates().at(kUpTime), Value(3LL));
}

TEST_F(StorageTest, AChangeOfTypeIsAChange) {
    storage_.set(kUpTime, Value(1LL));
    EXPECT_TRUE(storage_.set(kUpTime, Value(std::string("1"))));
}

TEST_F(StorageTest, FillingAnEntryThatIndexingMadeIsNoChange) {
    storage_[kUpTime];
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

TEST_F(StorageTest, SetWithCheckAtAnUnknownAddressAddsNothing) {
    EXPECT_FALSE(storage_.setWithCheck(kUpTime, Value(1LL)));
    EXPECT_FALSE(storage_.hasAddress(kUpTime));
    EXPECT_TRUE(storage_.listAddresses().empty());
}

TEST_F(StorageTest, SetWithCheckReplacesElementsOfTheSameTypeAndRecordsNothing) {
    storage_.set(kUpTime, Value(1LL));
    EXPECT_TRUE(storage_.setWithCheck(kUpTime, Value(2LL)));
    EXPECT_EQ(storage_[kUpTime], Value(2LL));
    EXPECT_FALSE(storage_.setWithCheck(kUpTime, Value(std::string("x"))));
    EXPECT_EQ(storage_[kUpTime], Value(2LL));
    EXPECT_TRUE(storage_.updates().empty());
}

TEST_F(StorageTest, IndexingAnUnknownAddressAddsAnUndefinedEntry) {
    EXPECT_FALSE(storage_.hasAddress(kUpTime));
    EXPECT_EQ(storage_[kUpTime].getType(), Value::Type::Undefined);
    EXPECT_TRUE(storage_.hasAddress(kUpTime));
}

TEST_F(StorageTest, RemovingAnObjectLeavesItsChildren) {
    storage_.set(Address("Device.DeviceInfo."), Value::Object());
    storage_.set(kUpTime, Value(1LL));
    EXPECT_TRUE(storage_.remove(Address("Device.DeviceInfo.")));
    EXPECT_FALSE(storage_.hasAddress(Address("Device.DeviceInfo.")));
    EXPECT_TRUE(storage_.hasAddress(kUpTime));
}

TEST_F(StorageTest, RemovingAnUnknownAddressIsRefused) {
    EXPECT_FALSE(storage_.remove(kUpTime));
}

TEST_F(StorageTest, RemovingLeavesTheRecordedChange) {
    storage_.set(kUpTime, Value(1LL));
    storage_.set(kUpTime, Value(2LL));
    EXPECT_TRUE(storage_.remove(kUpTime));
    EXPECT_EQ(storage_.updates().size(), 1U);
}

TEST_F(StorageTest, AddressesAreListedInOrder) {
    for (const char* path : {"b", "a.", "a.b", "A"}) storage_.set(Address(path), Value(1LL));
    EXPECT_EQ(paths(storage_.listAddresses()), (std::vector<std::string>{"A", "a.", "a.b", "b"}));
}

TEST_F(StorageTest, ListingParametersOmitsEveryObject) {
    storage_.set(Address("Device."), Value::Object());
    storage_.set(Address("Device.DeviceInfo."), Value::Object());
    storage_.set(kUpTime, Value(1LL));
    storage_[Address("Unknown")];
    EXPECT_EQ(paths(storage_.listParametersOnly()),
              (std::vector<std::string>{kUpTime.get(), "Unknown"}));
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

TEST_F(StorageTest, AFileBackedParameterReadsAsTheFileNewlineIncluded) {
    const std::string file = ::testing::TempDir() + "storage_test_tz";
    std::ofstream(file) << "MSK-3\n";
    Value value{std::string()};
    value.setMutableByUser(true);
    value.setFilePathToStoreValue(file);
    value.setPathInConfig("the.file.wins");
    storage_.set(kUpTime, value);
    const Value copy = storage_.getValueCopy(kUpTime);
    EXPECT_EQ(copy.getType(), Value::Type::String);
    EXPECT_EQ(copy.getString(), "MSK-3\n");
    EXPECT_FALSE(copy.isMutableByUser());
    EXPECT_EQ(copy.filePathToStoreValue(), "");
    EXPECT_EQ(storage_[kUpTime].getString(), "");
    std::remove(file.c_str());
    EXPECT_EQ(storage_.getValueCopy(kUpTime).getString(), "");
}

}  // namespace
