#include "stb/src/common/Commands.h"
#include "tests/support/Box.h"
#include "tests/support/StoreTest.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using TR::Address;
using TR::Value;

const Address kAddress("Device.DeviceInfo.ProvisioningCode");
constexpr char kOption[] = "easycwmp.@local[0].provisioning_code";
constexpr char kFile[] = "/var/kelm/TZ";

/// A parameter whose text is kept elsewhere: its copy has the text and none of the settings.
class StorageKeptElsewhereTest : public StoreTest {
  protected:
    StorageKeptElsewhereTest() {
        storage_.set(kAddress, Value(std::string()));
        storage_[kAddress].setMutableByUser(true);
        storage_[kAddress].setPathInConfig(kOption);
    }

    void expectCopy(const std::string& text) const {
        const Value copy = storage_.getValueCopy(kAddress);
        EXPECT_EQ(copy, Value(text));
        EXPECT_FALSE(copy.isMutableByUser());
        EXPECT_EQ(copy.getPathInConfig() + copy.filePathToStoreValue(), "");
    }
};

TEST_F(StorageKeptElsewhereTest, AUciParameterReadsWithoutTheTrailingNewline) {
    TR::Utils::getCmdOutput(std::string("/usr/bin/uci -q set ") + kOption + "=\"two words\"");
    box::clearCalls("uci");
    expectCopy("two words");
    EXPECT_EQ(box::calls("uci"), std::vector<std::string>{std::string("uci -q get ") + kOption});
    box::setFault("uci", "exit 1");
    expectCopy("");
}

TEST_F(StorageKeptElsewhereTest, AMissingOptionReadsAsAnEmptyText) {
    storage_[kAddress].setPathInConfig("no.such.option");
    expectCopy("");
}

TEST_F(StorageKeptElsewhereTest, AFileWinsOverUciAndReadsAsItStands) {
    storage_[kAddress].setFilePathToStoreValue(kFile);
    box::writeFile(kFile, "MSK-3\n");
    expectCopy("MSK-3\n");
    std::filesystem::remove(kFile);
    expectCopy("");
    EXPECT_EQ(storage_[kAddress].getString(), "");
    EXPECT_TRUE(box::calls("uci").empty());
}

}  // namespace
