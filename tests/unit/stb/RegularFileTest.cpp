#include "stb/src/common/RegularFile.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

using TR::Utils::RegularFile;

namespace {

class RegularFileTest : public testing::Test {
  protected:
    const TempFolder folder_;
};

}  // namespace

TEST_F(RegularFileTest, AFileHasItsSizeAndItsBytes) {
    RegularFile file(folder_.write("plain", "12345"));
    ASSERT_TRUE(file.isOpen());
    EXPECT_EQ(file.sizeHint(), 5);
    char bytes[8] = "";
    EXPECT_EQ(file.read(bytes, 2), 2U);
    EXPECT_EQ(file.read(bytes + 2, 6), 3U);
    EXPECT_STREQ(bytes, "12345");
    EXPECT_EQ(file.read(bytes, 8), 0U);
}

TEST_F(RegularFileTest, AFileTruncatedAfterOpeningGivesOnlyWhatIsLeft) {
    const std::string path = folder_.write("shrinking", "1234567890");
    RegularFile file(path);
    ASSERT_EQ(truncate(path.c_str(), 3), 0);
    char bytes[10] = "";
    EXPECT_EQ(file.read(bytes, sizeof bytes), 3U);
}

TEST_F(RegularFileTest, OnlyARegularFileIsOpen) {
    const std::string fifo = folder_.path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& path :
         {folder_.path(""), fifo, folder_.path("missing"), std::string("/dev/zero"), std::string()})
        EXPECT_FALSE(RegularFile(path).isOpen()) << path;
}

TEST_F(RegularFileTest, ASymbolicLinkIsFollowed) {
    const std::string link = folder_.path("link");
    ASSERT_EQ(symlink(folder_.write("target", "x").c_str(), link.c_str()), 0);
    EXPECT_TRUE(RegularFile(link).isOpen());
}

TEST_F(RegularFileTest, AFileBeyondFourGibibytesIsReadAtItsEnd) {
    const std::string path = folder_.path("sparse");
    constexpr std::int64_t kOffset = std::int64_t{5} << 30;
    std::ofstream writer(path);
    if (!writer.seekp(kOffset).write("end", 3).flush()) GTEST_SKIP() << "no sparse files here";
    RegularFile file(path);
    EXPECT_EQ(file.sizeHint(), kOffset + 3);
    file.seek(kOffset);
    char bytes[8] = "";
    EXPECT_EQ(file.read(bytes, 8), 3U);
    EXPECT_STREQ(bytes, "end");
}

TEST_F(RegularFileTest, AFileThatIsNotOpenIsNeitherReadNorReplaced) {
    char byte = 0;
    EXPECT_EQ(RegularFile(folder_.path("missing")).read(&byte, 1), 0U);
    EXPECT_FALSE(RegularFile(folder_.path(""), RegularFile::Use::Replace).replace("x"));
}

TEST_F(RegularFileTest, AFileOpenForReadingIsNotReplaced) {
    const std::string path = folder_.write("plain", "12345");
    EXPECT_FALSE(RegularFile(path).replace("x"));
    char bytes[8] = "";
    EXPECT_EQ(RegularFile(path).read(bytes, 8), 5U);
}
