#include "stb/src/common/Utils.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

TEST(GetLogsTest, WithOnlyTheCurrentLogItIsReturnedAsItStands) {
    std::ofstream("/tmp/syslog") << "only line\n";
    char* const logs = TR::getLogs();
    EXPECT_STREQ(logs, "only line\n");
    std::free(logs);
}

TEST(GetLogsTest, ARotatedLogComesBeforeTheCurrentOne) {
    std::ofstream("/tmp/syslog") << "new\n";
    std::ofstream("/tmp/syslog.0") << "old\n";
    char* const logs = TR::getLogs();
    EXPECT_STREQ(logs, "old\nnew\n");
    std::free(logs);
}
