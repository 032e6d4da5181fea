#include "stb/src/common/SystemTexts.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

class GetLogsTest : public testing::Test {
  protected:
    // The box comes with logs.
    void SetUp() override {
        std::remove("/tmp/syslog");
        for (int rotation = 0; rotation <= 300; ++rotation)
            std::remove(("/tmp/syslog." + std::to_string(rotation)).c_str());
    }
};

}  // namespace

TEST_F(GetLogsTest, WithOnlyTheCurrentLogItIsReturnedAsItStands) {
    std::ofstream("/tmp/syslog") << "only line\n";
    char* const logs = TR::getLogs();
    EXPECT_STREQ(logs, "only line\n");
    std::free(logs);
}

TEST_F(GetLogsTest, ARotatedLogComesBeforeTheCurrentOne) {
    std::ofstream("/tmp/syslog") << "new\n";
    std::ofstream("/tmp/syslog.0") << "old\n";
    char* const logs = TR::getLogs();
    EXPECT_STREQ(logs, "old\nnew\n");
    std::free(logs);
}

TEST_F(GetLogsTest, TheLengthCountsWhatIsBehindANul) {
    std::ofstream("/tmp/syslog") << std::string("a\0b", 3);
    std::size_t length = 0;
    char* const logs = TR::getLogs(length);
    EXPECT_EQ(std::string(logs, length), std::string("a\0b", 3));
    std::free(logs);
}

// The box has file systems that know where their holes are.
TEST_F(GetLogsTest, AHoleInFrontOfTheTextIsSkipped) {
    std::ofstream("/tmp/syslog.0") << "old\n";
    ASSERT_EQ(truncate("/tmp/syslog.0", off_t{1} << 30), 0);
    std::ofstream("/tmp/syslog").close();
    ASSERT_EQ(truncate("/tmp/syslog", off_t{32} << 20), 0);
    std::ofstream("/tmp/syslog", std::ios::app) << "new\n";
    char* const logs = TR::getLogs();
    EXPECT_STREQ(logs, "new\n");
    std::free(logs);
}

TEST_F(GetLogsTest, WithoutAnyLogThereIsNoText) {
    EXPECT_EQ(TR::getLogs(), nullptr);
    std::size_t length = 1;
    EXPECT_EQ(TR::getLogs(length), nullptr);
    EXPECT_EQ(length, 0U);
}
