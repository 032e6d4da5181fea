#include "stb/src/common/Files.h"
#include "stb/src/common/SystemTexts.h"
#include "tests/unit/stb/ChildProcess.h"
#include "tests/unit/stb/TempFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
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

    const TempFolder folder_;
};

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
}

TEST_F(UtilsFileTest, ADanglingLinkDoesNotExist) {
    const std::string link = folder_.path("link");
    ASSERT_EQ(symlink("nowhere", link.c_str()), 0);
    EXPECT_FALSE(fileExist(link));
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

TEST_F(UtilsFileTest, WhatIsNoReadableFileGivesTheEmptyText) {
    EXPECT_EQ(getFileContent(folder_.path("missing")), "");
    EXPECT_EQ(getFileContent(folder_.path("")), "");
    EXPECT_EQ(getFileContent(makeFifo()), "");
    EXPECT_EQ(getFileContent("/dev/zero"), "");
    EXPECT_EQ(getFileContent("/proc/self/mem"), "");
    EXPECT_TRUE(getFileContents(folder_.path("")).empty());
    EXPECT_TRUE(getFileContents(folder_.path("fifo"), 1).empty());
}

TEST_F(UtilsFileTest, LinesComeWithoutTheirLineFeeds) {
    const std::string path = folder_.write("lines", "one\n\ntwo \r\nlast");
    EXPECT_EQ(getFileContents(path), (Texts{"one", "", "two \r", "last"}));
    EXPECT_EQ(getFileContents(folder_.write("two", "a\nb\n"), 0), (Texts{"a", "b"}));
    EXPECT_TRUE(getFileContents(folder_.write("none", "")).empty());
    EXPECT_EQ(getFileContents(folder_.write("blank", "\n")), Texts{""});
}

TEST_F(UtilsFileTest, AMaximumOfOneGivesOnlyTheFirstLine) {
    const std::string path = folder_.write("lines", "one\ntwo\nthree\n");
    EXPECT_EQ(getFileContents(path, 1), Texts{"one"});
    EXPECT_EQ(getFileContents(path, 2), (Texts{"one", "two"}));
    EXPECT_EQ(getFileContents(path, 9), (Texts{"one", "two", "three"}));
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

TEST_F(UtilsFileTest, WhatCannotBeWrittenIsAFailure) {
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

TEST_F(UtilsFileTest, AFifoWithAReaderIsNoFileToWrite) {
    const std::string path = makeFifo();
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_FALSE(setFileContent(path, "x"));
    close(reader);
}

TEST_F(UtilsFileTest, AFullDiskIsAFailure) {
    const std::string path = folder_.path("growing");
    const ChildResult child = runInChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        std::printf("%d", setFileContent(path, std::string(5000, 'x')));
        std::printf("%d", setFileContent(path, std::string(1000, 'x')));
    });
    EXPECT_EQ(child.out, "01");
}

TEST_F(UtilsFileTest, ASettingThatDoesNotFitLeavesTheOldOneWhereItWas) {
    const std::string path = folder_.write("setting", "old");
    struct stat before {};
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    const ChildResult child = runInChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        std::printf("%d", setFileContent(path, std::string(5000, 'x')));
    });
    EXPECT_EQ(child.out, "0");
    EXPECT_EQ(getFileContent(path), "old");
    struct stat after {};
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
}

TEST_F(UtilsFileTest, ANewFileThatDoesNotFitIsNotLeftBehind) {
    const std::string path = folder_.path("new");
    const ChildResult child = runInChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        std::printf("%d", setFileContent(path, std::string(5000, 'x')));
    });
    EXPECT_EQ(child.out, "0");
    EXPECT_FALSE(fileExist(path));
}

TEST_F(UtilsFileTest, SettingKeepsTheFilesInodeAndMode) {
    const std::string path = folder_.write("setting", "old and long");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    struct stat before {};
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    EXPECT_TRUE(setFileContent(path, "new"));
    struct stat after {};
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
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
