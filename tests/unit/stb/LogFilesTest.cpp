#include "stb/src/common/SystemTexts.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class LogFilesTest : public testing::Test {
  protected:
    // Without a text nothing, with one its bytes.
    std::optional<std::string> joined(std::size_t most = TR::kLargestLog) const {
        std::size_t length = 0;
        char* const text = TR::joinLogFiles(folder_.path("syslog"), length, most);
        if (text == nullptr) return std::nullopt;
        std::string bytes(text, length);
        EXPECT_EQ(text[length], '\0');
        std::free(text);
        return bytes;
    }

    const TempFolder folder_;
};

}  // namespace

TEST_F(LogFilesTest, WithoutAnyFileThereIsNoTextAndTheCurrentLogIsReturnedAsItStands) {
    EXPECT_EQ(joined(), std::nullopt);
    for (const char* log : {"", "a line\nhalf a li"}) {
        folder_.write("syslog", log);
        EXPECT_EQ(joined(), log);
    }
}

TEST_F(LogFilesTest, RotatedFilesComeOldestFirst) {
    folder_.write("syslog", "current");
    folder_.write("syslog.0", "zero,");
    folder_.write("syslog.1", "one,");
    folder_.write("syslog.10", "ten,");
    folder_.write("syslog.300", "oldest,");
    folder_.write("syslog.301", "beyond,");
    folder_.write("syslog.x", "stranger,");
    EXPECT_EQ(joined(), "oldest,ten,one,zero,current");
}

TEST_F(LogFilesTest, FoldersAndFifosAreSkipped) {
    std::filesystem::create_directory(folder_.path("syslog.3"));
    ASSERT_EQ(mkfifo(folder_.path("syslog.2").c_str(), 0600), 0);
    EXPECT_EQ(joined(), std::nullopt);
    folder_.write("syslog.1", "file");
    EXPECT_EQ(joined(), "file");
}

TEST_F(LogFilesTest, MegabytesAndBytesOfEveryValueAreReadWhole) {
    const std::string old = std::string(3000000, 'o') + std::string("a\0b\n", 4);
    const std::string current = std::string("\0c\xff\0", 4) + std::string(2000000, 'c');
    folder_.write("syslog.0", old);
    folder_.write("syslog", current);
    EXPECT_EQ(joined(), old + current);
}

TEST_F(LogFilesTest, OfALongLogTheNewestBytesAreTaken) {
    folder_.write("syslog.2", "oldest,");
    folder_.write("syslog.1", "older,");
    folder_.write("syslog.0", "old,");
    folder_.write("syslog", "current");
    EXPECT_EQ(joined(24), "oldest,older,old,current");
    EXPECT_EQ(joined(23), "ldest,older,old,current");
    EXPECT_EQ(joined(17), "older,old,current");
    EXPECT_EQ(joined(8), ",current");
    EXPECT_EQ(joined(3), "ent");
}

TEST_F(LogFilesTest, OfASparseGibibyteOnlyTheNewestPartIsRead) {
    const std::string path = folder_.write("syslog.0", "beginning");
    ASSERT_EQ(truncate(path.c_str(), off_t{1} << 30), 0);
    folder_.write("syslog", "current");
    const auto log = joined();
    ASSERT_TRUE(log);
    EXPECT_LE(log->size(), std::size_t{64} << 20);
    EXPECT_EQ(log->substr(log->size() - 7), "current");
}
