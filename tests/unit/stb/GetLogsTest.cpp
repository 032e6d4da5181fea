#include "stb/src/common/SystemTexts.h"
#include "tests/support/Box.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>

#include <unistd.h>

namespace {

using Text = std::unique_ptr<char, void (*)(void*)>;

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

TEST_F(GetLogsTest, ARotatedLogComesBeforeTheCurrentOneAndTheLengthCountsNuls) {
    box::writeFile("/tmp/syslog", std::string("new\0b", 5));
    box::writeFile("/tmp/syslog.0", "old\n");
    std::size_t length = 0;
    const Text counted(TR::getLogs(length), &std::free);
    EXPECT_EQ(std::string(counted.get(), length), std::string("old\nnew\0b", 9));
    EXPECT_STREQ(Text(TR::getLogs(), &std::free).get(), "old\nnew");
}

// The box has file systems that know where their holes are.
TEST_F(GetLogsTest, AHoleInFrontOfTheTextIsSkipped) {
    box::writeFile("/tmp/syslog.0", "old\n");
    ASSERT_EQ(truncate("/tmp/syslog.0", off_t{1} << 30), 0);
    box::writeFile("/tmp/syslog", "");
    ASSERT_EQ(truncate("/tmp/syslog", off_t{32} << 20), 0);
    std::ofstream("/tmp/syslog", std::ios::app) << "new\n";
    EXPECT_STREQ(Text(TR::getLogs(), &std::free).get(), "new\n");
}

TEST_F(GetLogsTest, WithoutAnyLogThereIsNoText) {
    EXPECT_EQ(TR::getLogs(), nullptr);
    std::size_t length = 1;
    EXPECT_EQ(TR::getLogs(length), nullptr);
    EXPECT_EQ(length, 0U);
}
