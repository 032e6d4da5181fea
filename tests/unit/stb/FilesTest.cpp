#include "stb/src/common/Files.h"
#include "stb/src/common/SystemTexts.h"
#include "tests/support/TempFolder.h"
#include "tests/unit/stb/ChildProcess.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace TR::Utils;
using Texts = std::vector<std::string>;

namespace {

class UtilsFileTest : public testing::Test {
  protected:
    std::string makeFifo() const {
        const std::string path = folder_.path("fifo");
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        return path;
    }

    // Costs no room, where the file system knows holes.
    std::string makeSparseGibibyte(const std::string& beginning) const {
        const std::string path = folder_.write("sparse", beginning);
        EXPECT_EQ(truncate(path.c_str(), off_t{1} << 30), 0);
        return path;
    }

    static struct stat statOf(const std::string& path) {
        struct stat result {};
        EXPECT_EQ(stat(path.c_str(), &result), 0) << path;
        return result;
    }

    /// Sets a content of that size where only 1000 bytes fit.
    static bool setOnAFullDisk(const std::string& path, std::size_t size) {
        const ChildResult child = runInChild([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            rlimit limit{};
            getrlimit(RLIMIT_FSIZE, &limit);
            const rlimit full{1000, limit.rlim_max};
            setrlimit(RLIMIT_FSIZE, &full);
            std::printf("%d", setFileContent(path, std::string(size, 'x')));
            setrlimit(RLIMIT_FSIZE, &limit);  // a build for coverage writes its counts at the end
        });
        return child.out == "1";
    }

    const TempFolder folder_;
};

// All bytes that this process has read from any file.
std::uint64_t bytesRead() {
    std::ifstream io("/proc/self/io");
    std::string name;
    std::uint64_t bytes = 0;
    io >> name >> bytes;
    return bytes;
}

std::ptrdiff_t openDescriptors() {
    using Iterator = std::filesystem::directory_iterator;
    return std::distance(Iterator("/proc/self/fd"), Iterator());
}

}  // namespace

TEST_F(UtilsFileTest, FilesAndFoldersExist) {
    EXPECT_TRUE(fileExist(folder_.write("file", "")));
    EXPECT_TRUE(fileExist(folder_.path("")));
    EXPECT_FALSE(fileExist(folder_.path("missing")));
    EXPECT_FALSE(fileExist(""));
    ASSERT_EQ(symlink("nowhere", folder_.path("dangling").c_str()), 0);
    EXPECT_FALSE(fileExist(folder_.path("dangling")));
}

TEST_F(UtilsFileTest, ContentIsReadByteForByte) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    bytes += "\r\n\n";
    EXPECT_EQ(getFileContent(folder_.write("bytes", bytes)), bytes);
    EXPECT_EQ(getFileContent(folder_.write("empty", "")), "");
}

TEST_F(UtilsFileTest, FilesAroundTheBufferSizeAreReadWhole) {
    for (const std::size_t size : {4094U, 4095U, 4096U, 4097U, 8191U, 8192U, 1U << 20}) {
        const std::string content(size, 'x');
        EXPECT_EQ(getFileContent(folder_.write("sized", content)), content) << size;
    }
}

TEST_F(UtilsFileTest, FilesOfProcAreReadToTheirEnd) {
    EXPECT_NE(getFileContent("/proc/self/status").find("Name:"), std::string::npos);
    // Longer than one page, with a size of 0.
    const std::string maps = getFileContent("/proc/self/smaps");
    EXPECT_GT(maps.size(), 8192U);
    EXPECT_EQ(maps.back(), '\n');
}

TEST_F(UtilsFileTest, UnreadableFilesGiveTheEmptyText) {
    EXPECT_EQ(getFileContent(folder_.path("missing")), "");
    EXPECT_EQ(getFileContent(folder_.path("")), "");
    EXPECT_EQ(getFileContent(makeFifo()), "");
    EXPECT_EQ(getFileContent("/dev/zero"), "");
    EXPECT_EQ(getFileContent("/proc/self/mem"), "");
    EXPECT_TRUE(getFileContents(folder_.path("")).empty());
    EXPECT_TRUE(getFileContents(folder_.path("fifo"), 1).empty());
}

TEST_F(UtilsFileTest, LinesComeWithoutTheirLineFeedsUpToTheMaximum) {
    const std::string path = folder_.write("lines", "one\n\ntwo \r\nlast");
    EXPECT_EQ(getFileContents(path), (Texts{"one", "", "two \r", "last"}));
    EXPECT_EQ(getFileContents(path, 1), Texts{"one"});
    EXPECT_EQ(getFileContents(path, 2), (Texts{"one", ""}));
    EXPECT_EQ(getFileContents(path, 9), (Texts{"one", "", "two \r", "last"}));
    EXPECT_EQ(getFileContents(folder_.write("two", "a\nb\n"), 0), (Texts{"a", "b"}));
    EXPECT_TRUE(getFileContents(folder_.write("none", "")).empty());
    EXPECT_EQ(getFileContents(folder_.write("blank", "\n")), Texts{""});
}

TEST_F(UtilsFileTest, BeyondTheBoundNothingIsRead) {
    const std::string path = folder_.write("bounded", "one\ntwo");
    EXPECT_EQ(getFileContent(path, 7), "one\ntwo");
    EXPECT_EQ(getFileContent(path, 6), "one\ntw");
    EXPECT_EQ(getFileContents(path, 0, 5), (Texts{"one", "t"}));
    const std::string large(10000, 'x');
    EXPECT_EQ(getFileContent(folder_.write("large", large), 9000).size(), 9000U);
}

TEST_F(UtilsFileTest, OfASparseGibibyteOnlyTheBeginningIsRead) {
    const std::string path = makeSparseGibibyte("first\n");
    EXPECT_EQ(getFileContent(path, kLargestSetting).size(), std::size_t{1} << 20);
    EXPECT_EQ(getFileContent(path).size(), std::size_t{8} << 20);
    EXPECT_EQ(getFileContents(path).front(), "first");
}

TEST_F(UtilsFileTest, AFirstLineCostsNoMoreThanAFewPages) {
    const std::string path = makeSparseGibibyte("first\nsecond\n");
    const std::uint64_t before = bytesRead();
    if (before == 0) GTEST_SKIP() << "the kernel does not count";
    EXPECT_EQ(getFileContents(path, 1), Texts{"first"});
    EXPECT_LT(bytesRead() - before, 100'000U);
}

TEST_F(UtilsFileTest, AFileThatClaimsMoreThanItHoldsIsReadToItsEnd) {
    // Of /sys, where every file claims a page.
    const std::string mode = getFileContent("/sys/kernel/mm/transparent_hugepage/enabled");
    if (mode.empty()) GTEST_SKIP() << "no such file in /sys";
    EXPECT_EQ(mode.back(), '\n');
}

TEST_F(UtilsFileTest, ASettingThatWouldBeReadBackCutIsRefused) {
    const std::string path = folder_.write("setting", "old");
    EXPECT_FALSE(setFileContent(path, std::string(kLargestSetting + 1, 'x')));
    EXPECT_EQ(getFileContent(path), "old");
    EXPECT_FALSE(setFileContent(folder_.path("new"), std::string(kLargestSetting + 1, 'x')));
    EXPECT_FALSE(fileExist(folder_.path("new")));
    const std::string largest(kLargestSetting, 'x');
    EXPECT_TRUE(setFileContent(path, largest));
    EXPECT_EQ(getFileContent(path, kLargestSetting), largest);
}

TEST_F(UtilsFileTest, ASettingThatDoesNotFitLeavesTheOldOneWhereItWas) {
    for (const std::string old : {"old", ""}) {
        const std::string path = folder_.write("setting", old);
        const struct stat before = statOf(path);
        EXPECT_FALSE(setOnAFullDisk(path, 5000));
        EXPECT_TRUE(fileExist(path));
        EXPECT_EQ(getFileContent(path), old);
        EXPECT_EQ(statOf(path).st_ino, before.st_ino);
    }
}

TEST_F(UtilsFileTest, ANewFileThatDoesNotFitIsNotLeftBehind) {
    const std::string path = folder_.path("new");
    EXPECT_FALSE(setOnAFullDisk(path, 5000));
    EXPECT_FALSE(fileExist(path));
    EXPECT_TRUE(setOnAFullDisk(path, 1000));
}

TEST_F(UtilsFileTest, EveryNameOfASettingShowsTheNewOne) {
    const std::string path = folder_.write("setting", "old");
    const std::string other = folder_.path("hardlink");
    ASSERT_EQ(link(path.c_str(), other.c_str()), 0);
    EXPECT_TRUE(setFileContent(path, "new"));
    EXPECT_EQ(getFileContent(other), "new");
}

TEST_F(UtilsFileTest, SettingReplacesTheContentAsItStands) {
    const std::string path = folder_.path("setting");
    const std::string longer("long\0text", 9);
    EXPECT_TRUE(setFileContent(path, longer));
    EXPECT_EQ(getFileContent(path), longer);
    EXPECT_TRUE(setFileContent(path, "x"));
    EXPECT_EQ(getFileContent(path), "x");
}

TEST_F(UtilsFileTest, SettingTheEmptyContentDeletesTheFile) {
    const std::string path = folder_.write("setting", "old");
    EXPECT_TRUE(setFileContent(path, ""));
    EXPECT_FALSE(fileExist(path));
    EXPECT_TRUE(setFileContent(path, ""));
    EXPECT_TRUE(setFileContent(path + "/below", ""));
}

TEST_F(UtilsFileTest, AFileThatCannotBeWrittenIsAFailure) {
    EXPECT_FALSE(setFileContent(folder_.path("missing/file"), "x"));
    EXPECT_FALSE(setFileContent(folder_.path(""), "x"));
    EXPECT_FALSE(setFileContent("", "x"));
    EXPECT_FALSE(setFileContent("/dev/full", "x"));
    EXPECT_FALSE(setFileContent(makeFifo(), "x"));
}

TEST_F(UtilsFileTest, AFolderWithContentCannotBeDeletedBySetting) {
    folder_.write("inside", "x");
    EXPECT_FALSE(setFileContent(folder_.path(""), ""));
    EXPECT_TRUE(fileExist(folder_.path("inside")));
}

TEST_F(UtilsFileTest, AFifoWithAReaderIsNotWritten) {
    const std::string path = makeFifo();
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_FALSE(setFileContent(path, "x"));
    close(reader);
}

TEST_F(UtilsFileTest, SettingKeepsTheFilesInodeAndMode) {
    const std::string path = folder_.write("setting", "old and long");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    const struct stat before = statOf(path);
    EXPECT_TRUE(setFileContent(path, "new"));
    EXPECT_EQ(statOf(path).st_ino, before.st_ino);
    EXPECT_EQ(statOf(path).st_mode, before.st_mode);
    EXPECT_EQ(getFileContent(path), "new");
}

TEST_F(UtilsFileTest, ALinkIsWrittenThrough) {
    const std::string link = folder_.path("link");
    ASSERT_EQ(symlink(folder_.path("target").c_str(), link.c_str()), 0);
    EXPECT_TRUE(setFileContent(link, "new"));
    EXPECT_EQ(getFileContent(folder_.path("target")), "new");
    EXPECT_TRUE(setFileContent(link, "newer"));
    EXPECT_EQ(getFileContent(folder_.path("target")), "newer");
}

TEST_F(UtilsFileTest, NoDescriptorLeaks) {
    const std::string fifo = makeFifo();
    const std::ptrdiff_t before = openDescriptors();
    for (int i = 0; i < 10; ++i) {
        for (const std::string& path : {folder_.path("file"), fifo, folder_.path("")}) {
            setFileContent(path, "x");
            getFileContent(path);
            getFileContents(path, 1);
        }
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(UtilsFileTest, MemoryInformationIsTheKernelsFile) {
    EXPECT_EQ(TR::readMemInfo().substr(0, 9), "MemTotal:");
}
