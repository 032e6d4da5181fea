#include "tests/box/DaemonTest.h"
#include "tests/box/RandomMessages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

unsigned variable(const char* name, unsigned otherwise) {
    const char* value = std::getenv(name);
    return value == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(value, nullptr, 10));
}

// A sanitizer keeps what was freed.
constexpr std::size_t kMemoryBoundKiB = (kIsSanitized ? 1024 : 64) * 1024;

class MessageFuzzTest : public DaemonTest {
  protected:
    void SetUp() override { start("<limit name=\"max_replies_per_connection\">50000</limit>"); }

    std::vector<std::string> readOnlyOf(const std::vector<std::string>& addresses) {
        std::vector<std::string> readOnly;
        for (const std::string& address : addresses)
            if (client().getWritable(address).text == "0") readOnly.push_back(address);
        return readOnly;
    }
    std::string settings() {
        std::string texts;
        for (const char* name : {"UpdateServer", "UpdateType", "TimeZone", "SyslogHost"})
            texts +=
                value(std::string("Device.Services.STBService.1.X_Kelm.Config.") + name) + '\n';
        return texts;
    }
    void send(unsigned messages) {
        RandomMessages random(bus().address(), readOnlyOf(client().listParametersOnly().list),
                              variable("KELM_FUZZ_SEED", 1));
        for (unsigned i = 1; i <= messages; ++i) {
            random.sendOne();
            if (i % 50 != 0 && i != messages) continue;
            ASSERT_EQ(value("Device.DeviceInfo.Manufacturer"), "KELM")
                << "after " << i << " messages";
            random.drain();
        }
    }
};

// A million by hand: KELM_FUZZ_MESSAGES=1000000, and KELM_FUZZ_SEED for others.
TEST_F(MessageFuzzTest, RandomMessagesLeaveTheDaemonAndItsTreeAsTheyWere) {
    const auto before = client().listAddresses().list;
    const std::string settingsBefore = settings();
    const Vitals vitals = quietVitalsOf(daemon().pid());
    ASSERT_NO_FATAL_FAILURE(send(variable("KELM_FUZZ_MESSAGES", 20'000)));
    const auto after = client().listAddresses().list;
    EXPECT_TRUE(std::includes(after.begin(), after.end(), before.begin(), before.end()));
    std::size_t added = 0;
    for (const std::string& address : after) {
        if (std::binary_search(before.begin(), before.end(), address)) continue;
        added += address.size();
        EXPECT_LE(address.size(), 1024U);
        EXPECT_EQ(value(address), "") << address;
    }
    EXPECT_GT(added, 0U);
    EXPECT_LE(added, std::size_t{4} << 20);
    EXPECT_EQ(settings(), settingsBefore);
    expectNoMoreThan(vitals);
    EXPECT_LE(peakKiBOf(daemon().pid()), vitals.residentKiB + kMemoryBoundKiB);
    expectOrderlyStop();
}

}  // namespace
