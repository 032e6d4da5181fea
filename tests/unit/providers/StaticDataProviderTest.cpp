#include "providers/StaticDataProvider.h"
#include "tests/support/StoreTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
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

class StaticDataProviderTest : public StoreTest {
  protected:
    Value& at(const std::string& name) { return storage_[Address(kService + name)]; }

    TR::StaticDataProvider provider_{&storage_};
};

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// A branch is an object, and a number is an integer; the audio levels are the one exception.
Value::Type expectedType(const std::string& path, const std::string& text) {
    const bool isNumber = !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return std::isdigit(static_cast<unsigned char>(c)) != 0;
    });
    if (path.back() == '.') return Value::Type::Object;
    return isNumber && !endsWith(path, ".Audiolevel") ? Value::Type::Integer : Value::Type::String;
}

// Names and texts are in the golden listing of the whole tree; types and elements do not show
// there.
TEST_F(StaticDataProviderTest, TextsNumbersAndListsHaveTheirTypesAndElements) {
    EXPECT_TRUE(provider_.store());
    for (const Address& address : storage_.listAddresses()) {
        const std::string& path = address.get();
        const Value& value = storage_[address];
        const std::string text = value.toString();
        const auto commas = std::count(text.begin(), text.end(), ',');
        EXPECT_EQ(value.getType(), expectedType(path, text)) << path;
        EXPECT_EQ(value.getList().size(), static_cast<std::size_t>(commas) + 1) << path;
        EXPECT_FALSE(value.isForcedInform()) << path;
        EXPECT_EQ(value.getPathInConfig(), "") << path;
        EXPECT_EQ(value.isMutableByUser(), path.find(".X_Kelm.Config.") != std::string::npos);
        EXPECT_EQ(value.filePathToStoreValue().empty(), !value.isMutableByUser()) << path;
    }
}

TEST_F(StaticDataProviderTest, TheServiceIsAnObjectAndTheVendorBranchHasNone) {
    provider_.store();
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
        EXPECT_EQ(value.filePathToStoreValue(), file) << name;
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
