#include "stb/src/common/SystemTexts.h"
#include "tests/unit/stb/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include <sys/stat.h>

namespace {

struct Freer {
    void operator()(char* text) const { std::free(text); }
};
using LogText = std::unique_ptr<char, Freer>;

class LogFilesTest : public testing::Test {
  protected:
    LogText joined() const { return LogText(TR::joinLogFiles(folder_.path("syslog"))); }

    const TempFolder folder_;
};

}  // namespace

TEST_F(LogFilesTest, WithoutAnyFileThereIsNoText) {
    EXPECT_EQ(joined(), nullptr);
}

TEST_F(LogFilesTest, TheCurrentLogAloneIsReturnedAsItStands) {
    folder_.write("syslog", "a line\nhalf a li");
    EXPECT_STREQ(joined().get(), "a line\nhalf a li");
}

TEST_F(LogFilesTest, AnEmptyLogGivesTheEmptyText) {
    folder_.write("syslog", "");
    EXPECT_STREQ(joined().get(), "");
}

TEST_F(LogFilesTest, RotatedFilesComeOldestFirst) {
    folder_.write("syslog", "current");
    folder_.write("syslog.0", "zero,");
    folder_.write("syslog.1", "one,");
    folder_.write("syslog.10", "ten,");
    folder_.write("syslog.300", "oldest,");
    folder_.write("syslog.301", "beyond,");
    folder_.write("syslog.x", "stranger,");
    EXPECT_STREQ(joined().get(), "oldest,ten,one,zero,current");
}

TEST_F(LogFilesTest, FoldersAndFifosAreSkipped) {
    std::filesystem::create_directory(folder_.path("syslog.3"));
    ASSERT_EQ(mkfifo(folder_.path("syslog.2").c_str(), 0600), 0);
    EXPECT_EQ(joined(), nullptr);
    folder_.write("syslog.1", "file");
    EXPECT_STREQ(joined().get(), "file");
}

TEST_F(LogFilesTest, MegabytesAreReadWhole) {
    const std::string old(3000000, 'o');
    const std::string current(2000000, 'c');
    folder_.write("syslog.0", old);
    folder_.write("syslog", current);
    EXPECT_EQ(joined().get(), old + current);
}
