#include "cwmp/LineReader.h"
#include "cwmp/ManagementServer.h"
#include "cwmp/NotificationFile.h"
#include "cwmp/Options.h"
#include "cwmp/Program.h"
#include "tests/support/Box.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <chrono>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace cwmp;
using Words = std::vector<std::string>;

Deadline soon(int milliseconds = 20'000) {
    return Deadline(std::chrono::milliseconds(milliseconds));
}

TEST(CwmpProgramTest, ItsOutputAndStatusAreRead) {
    const Ended ended = runProgram({"/bin/sh", "-c", "printf 'a b'; exit 3"}, soon());
    EXPECT_EQ(ended.how, Ended::How::Exited);
    EXPECT_EQ(ended.status, 3);
    EXPECT_EQ(ended.output, "a b");
    EXPECT_FALSE(runProgram({"/nonexistent"}, soon()).isGood());  // 127 through an emulator
}

TEST(CwmpProgramTest, ItInheritsNothingButWhatItIsGiven) {
    const int other = open("/dev/null", O_RDONLY);
    dup2(other, 77);
    const Ended ended =
        runProgram({"/bin/sh", "-c",
                    "[ -e /proc/$$/fd/77 ] && echo leaked; cat; echo $SET $HOME; kill -TERM $$"},
                   soon(), Output::Read, {{"SET", "a $(b)"}, {"HOME", "x"}});
    EXPECT_EQ(ended.output, "a $(b) x\n");
    EXPECT_EQ(ended.how, Ended::How::Signalled);
    close(77);
    close(other);
}

TEST(CwmpProgramTest, WhatTakesTooLongIsKilledWithItsChildren) {
    const TempFolder folder;
    const std::string alive = folder.path("alive");
    const Ended ended =
        runProgram({"/bin/sh", "-c", "(sleep 600; touch \"$0\") & sleep 600", alive}, soon(100));
    EXPECT_EQ(ended.how, Ended::How::TimedOut);
    EXPECT_EQ(runProgram({"/bin/sh", "-c", "exec >&-; sleep 600"}, soon(100)).how,
              Ended::How::TimedOut);
}

TEST(CwmpProgramTest, AChildThatHoldsTheOutputIsNotWaitedFor) {
    const Ended ended = runProgram({"/bin/sh", "-c", "sleep 30 2>/dev/null & echo done"}, soon());
    EXPECT_EQ(ended.how, Ended::How::Exited);
    EXPECT_EQ(ended.output, "done\n");
}

TEST(CwmpProgramTest, OfEndlessOutputAMebibyteIsKept) {
    const Ended ended = runProgram({"/bin/sh", "-c", "head -c 3000000 /dev/zero"}, soon());
    EXPECT_EQ(ended.output.size(), std::size_t{1} << 20);
    EXPECT_TRUE(ended.isGood());
}

TEST(LineReaderTest, LinesComeOneByOneAndALastOneWithoutAnEndCounts) {
    const TempFolder folder;
    box::writeFile(folder.path("lines"), "one\n\ntwo\nthree");
    const int file = open(folder.path("lines").c_str(), O_RDONLY);
    LineReader reader(file);
    EXPECT_EQ(reader.next(), "one");
    EXPECT_EQ(reader.next(), "");
    EXPECT_EQ(reader.next(), "two");
    EXPECT_EQ(reader.next(), "three");
    EXPECT_FALSE(reader.next().has_value());
    close(file);
}

TEST(LineReaderTest, ALineThatIsTooLongIsCutAndTheNextOneIsWhole) {
    const TempFolder folder;
    box::writeFile(folder.path("lines"),
                   std::string(LineReader::kLongest + 100'000, 'x') + "\nnext\n");
    const int file = open(folder.path("lines").c_str(), O_RDONLY);
    LineReader reader(file);
    const auto first = reader.next();
    ASSERT_TRUE(first.has_value());
    EXPECT_LT(first->size(), LineReader::kLongest);
    EXPECT_EQ(reader.next(), "next");
    EXPECT_FALSE(reader.next().has_value());
    close(file);
}

TEST(NotificationFileTest, ItIsReplacedInOneStepWithItsMode) {
    const TempFolder folder;
    const NotificationFile file(folder.path("rows"));
    EXPECT_EQ(file.read(), "");
    umask(0177);
    ASSERT_TRUE(file.writeBeside("a\n"));
    umask(022);
    EXPECT_EQ(file.read(), "");
    ASSERT_TRUE(file.putInPlace());
    EXPECT_EQ(file.read(), "a\n");
    struct stat status {};
    ASSERT_EQ(stat(folder.path("rows").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST(NotificationFileTest, ALinkInItsPlaceIsNotFollowed) {
    const TempFolder folder;
    box::writeFile(folder.path("other"), "precious");
    ASSERT_EQ(symlink(folder.path("other").c_str(), folder.path("rows.new").c_str()), 0);
    ASSERT_TRUE(NotificationFile(folder.path("rows")).writeBeside("a\n"));
    EXPECT_EQ(box::readFile(folder.path("other")), "precious");
}

TEST(ManagementServerTest, UrlsHaveToLookLikeOnes) {
    const std::string url = "Device.ManagementServer.URL";
    for (const char* text : {"http://a", "https://acs.example.net:7547/x?y", "x+y-1.z://h"})
        EXPECT_TRUE(management::stored(url, text)) << text;
    for (const char* text : {"", "http:/a", "http://", "://a", "acs", "a b://c"})
        EXPECT_FALSE(management::stored(url, text)) << text;
    EXPECT_EQ(management::stored("Device.ManagementServer.PeriodicInformTime",
                                 "2026-01-01T01:00:00+01:00"),
              "2026-01-01T00:00:00Z");
    EXPECT_EQ(management::stored("Device.ManagementServer.PeriodicInformEnable", "true"), "1");
}

TEST(ManagementServerTest, TheFirstAddressOfAnInterfaceIsFound) {
    EXPECT_EQ(management::firstAddressOf("no such one"), "");
    EXPECT_EQ(management::value({}, "Device.ManagementServer.ConnectionRequestURL"), "");
}

TEST(CwmpOptionsTest, PeopleSayWhatTheClientSays) {
    const auto lines = linesFor({"set", "value", "Device.A", "x y"});
    ASSERT_TRUE(lines.has_value());
    EXPECT_EQ(
        lines->front(),
        R"({ "command": "set", "class": "value", "parameter": "Device.A", "argument": "x y" })");
    EXPECT_EQ(lines->back(), R"({ "command": "apply", "class": "value" })");
    EXPECT_TRUE(linesFor({"get", "name", "Device.", "1"}));
    EXPECT_TRUE(linesFor({"check_value_change"}));
    for (const Words& words : {Words{}, Words{"get"}, Words{"get", "value"}, Words{"fly"},
                               Words{"get", "value", "a", "b"}, Words{"inform", "device_id", "x"},
                               Words{"reboot"}, Words{"--json-input", "x"}})
        EXPECT_FALSE(linesFor(words).has_value());
}

}  // namespace
