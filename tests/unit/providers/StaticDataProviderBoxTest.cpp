#include "model/Storage.h"
#include "providers/StaticDataProvider.h"
#include "tests/support/Box.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using TR::Address;
using TR::Value;

const Address kTimeZone("Device.Services.STBService.1.X_Kelm.Config.TimeZone");
const Address kSyslogHost("Device.Services.STBService.1.X_Kelm.Config.SyslogHost");

TEST(StaticDataProviderFilesTest, ReadsShowTheFileAsItIsAtThatMoment) {
    TR::Storage storage;
    TR::StaticDataProvider provider(&storage);
    provider.updateValues();
    box::writeFile("/var/kelm/TZ", "MSK-3");
    EXPECT_EQ(storage.getValueCopy(kTimeZone), Value(std::string("MSK-3")));
    box::writeFile("/var/kelm/TZ", "CET-1CEST\n");
    EXPECT_EQ(storage.getValueCopy(kTimeZone), Value(std::string("CET-1CEST\n")));
}

TEST(StaticDataProviderFilesTest, AnUpdateDoesNotDisturbTheFile) {
    TR::Storage storage;
    TR::StaticDataProvider provider(&storage);
    provider.updateValues();
    box::writeFile("/var/kelm/syslog_host", "10.0.0.1");
    provider.updateValues();
    EXPECT_EQ(box::readFile("/var/kelm/syslog_host"), "10.0.0.1");
    EXPECT_EQ(storage[kSyslogHost].getString(), "");
}

}  // namespace
