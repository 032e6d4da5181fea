#include "model/Storage.h"
#include "stb/src/common/Commands.h"
#include "tests/support/Box.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using TR::Address;
using TR::Value;

const Address kProvisioningCode("Device.DeviceInfo.ProvisioningCode");
constexpr char kOption[] = "easycwmp.@local[0].provisioning_code";

class StorageUciTest : public ::testing::Test {
  protected:
    StorageUciTest() {
        storage_.set(kProvisioningCode, Value(std::string()));
        storage_[kProvisioningCode].setMutableByUser(true);
        storage_[kProvisioningCode].setPathInConfig(kOption);
    }

    TR::Storage storage_;
};

TEST_F(StorageUciTest, AUciParameterReadsWithoutTheTrailingNewline) {
    TR::Utils::getCmdOutput(std::string("/usr/bin/uci -q set ") + kOption + "=\"two words\"");
    box::clearCalls("uci");
    const Value copy = storage_.getValueCopy(kProvisioningCode);
    EXPECT_EQ(copy, Value(std::string("two words")));
    EXPECT_FALSE(copy.isMutableByUser());
    EXPECT_EQ(copy.getPathInConfig(), "");
    EXPECT_EQ(box::calls("uci"), std::vector<std::string>{std::string("uci -q get ") + kOption});
}

TEST_F(StorageUciTest, AMissingOptionReadsAsAnEmptyText) {
    storage_[kProvisioningCode].setPathInConfig("no.such.option");
    EXPECT_EQ(storage_.getValueCopy(kProvisioningCode), Value(std::string()));
}

TEST_F(StorageUciTest, AFailingUciReadsAsAnEmptyText) {
    box::setFault("uci", "exit 1");
    EXPECT_EQ(storage_.getValueCopy(kProvisioningCode), Value(std::string()));
}

}  // namespace
