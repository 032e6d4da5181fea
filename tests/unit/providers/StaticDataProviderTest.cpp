#include "model/Storage.h"
#include "providers/StaticDataProvider.h"
#include "tests/unit/providers/StaticTreeListing.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using TR::Address;
using TR::Value;

const std::string kService = "Device.Services.STBService.1.";

struct FileParameter {
    const char* name;
    const char* file;
};

constexpr FileParameter kFileParameters[] = {
    {"UpdateType", "/var/kelm/update_type"},
    {"UpdateServer", "/var/kelm/update_server.tr69"},
    {"TimeZone", "/var/kelm/TZ"},
    {"ProvisionServer", "/var/kelm/provision_server.tr69"},
    {"SyslogHost", "/var/kelm/syslog_host"},
};

class StaticDataProviderTest : public ::testing::Test {
  protected:
    Value& at(const std::string& name) { return storage_[Address(kService + name)]; }

    TR::Storage storage_;
    TR::StaticDataProvider provider_{&storage_};
};

TEST_F(StaticDataProviderTest, PublishesEveryListedParameter) {
    EXPECT_TRUE(provider_.store());
    for (const ListedParameter& listed : kListedParameters) {
        ASSERT_TRUE(storage_.hasAddress(Address(kService + listed.name))) << listed.name;
        const Value& value = at(listed.name);
        EXPECT_EQ(value.getType(), listed.type) << listed.name;
        EXPECT_EQ(value.getList().size(), listed.elements) << listed.name;
        EXPECT_EQ(value.toString(), listed.text) << listed.name;
        EXPECT_FALSE(value.isMutableByUser()) << listed.name;
        EXPECT_FALSE(value.isForcedInform()) << listed.name;
        EXPECT_EQ(value.getPathInConfig() + value.filePathToStoreValue(), "") << listed.name;
    }
}

TEST_F(StaticDataProviderTest, PublishesNothingElse) {
    provider_.store();
    std::set<std::string> expected = {"Device.", "Device.Services.", "Device.Services.STBService.",
                                      kService};
    for (const ListedParameter& listed : kListedParameters) expected.insert(kService + listed.name);
    for (const FileParameter& parameter : kFileParameters)
        expected.insert(kService + "X_Kelm.Config." + parameter.name);
    std::set<std::string> published;
    for (const Address& address : storage_.listAddresses()) published.insert(address.get());
    EXPECT_EQ(published, expected);
}

TEST_F(StaticDataProviderTest, ParentsAreObjectsAndTheVendorBranchHasNone) {
    provider_.store();
    for (const char* path : {"Device.", "Device.Services.", "Device.Services.STBService."})
        EXPECT_EQ(storage_[Address(path)].getType(), Value::Type::Object);
    EXPECT_EQ(at("").getType(), Value::Type::Object);
    EXPECT_FALSE(storage_.hasAddress(Address(kService + "X_Kelm.")));
    EXPECT_FALSE(storage_.hasAddress(Address(kService + "X_Kelm.Config.")));
}

TEST_F(StaticDataProviderTest, TheThreeAudioListsDifferInTheirThirdItemAndLength) {
    provider_.store();
    const auto decoder = at("Capabilities.AudioDecoder.AudioStandards").getList();
    const auto mpeg2 = at("Capabilities.VideoDecoder.MPEG2Part2.AudioStandards").getList();
    const auto mpeg4 = at("Capabilities.VideoDecoder.MPEG4Part10.AudioStandards").getList();
    ASSERT_EQ(decoder.size(), 10U);
    ASSERT_EQ(mpeg2.size(), 10U);
    ASSERT_EQ(mpeg4.size(), 11U);
    EXPECT_EQ(decoder[2].text, "MPEG2-Part3 -Layer2");
    EXPECT_EQ(mpeg2[2].text, "MPEG2-Part3-Layer2");
    EXPECT_EQ(mpeg4[2].text, "MPEG2-Part3 -Layer2");
    EXPECT_EQ(mpeg4[10].text, "DOLBY-AC3");
}

TEST_F(StaticDataProviderTest, TheConfigurationParametersAreWritableAndFileBacked) {
    provider_.store();
    for (const auto& [name, file] : kFileParameters) {
        const Value& value = at(std::string("X_Kelm.Config.") + name);
        EXPECT_EQ(value, Value(std::string())) << name;
        EXPECT_TRUE(value.isMutableByUser()) << name;
        EXPECT_FALSE(value.isForcedInform()) << name;
        EXPECT_EQ(value.filePathToStoreValue(), file) << name;
        EXPECT_EQ(value.getPathInConfig(), "") << name;
    }
}

TEST_F(StaticDataProviderTest, AnUpdateRestoresWhatSomethingElseChanged) {
    provider_.updateValues();
    Value changed(std::string("PAL"));
    changed.setMutableByUser(true);
    storage_.set(Address(kService + "Capabilities.CA.CASystems"), changed);
    at("X_Kelm.Config.TimeZone").setByUser(std::string("x"));
    at("X_Kelm.Config.TimeZone").setMutableByUser(false);
    EXPECT_TRUE(provider_.updateValues());
    EXPECT_EQ(at("Capabilities.CA.CASystems").toString(), "Verimatrix");
    EXPECT_FALSE(at("Capabilities.CA.CASystems").isMutableByUser());
    EXPECT_EQ(at("X_Kelm.Config.TimeZone").getString(), "");
    EXPECT_TRUE(at("X_Kelm.Config.TimeZone").isMutableByUser());
}

TEST_F(StaticDataProviderTest, LoadSucceedsAndWritesNothing) {
    EXPECT_TRUE(provider_.load());
    EXPECT_TRUE(storage_.listAddresses().empty());
}

}  // namespace
