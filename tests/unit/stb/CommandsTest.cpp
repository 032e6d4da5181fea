#include "stb/src/common/Commands.h"
#include "tests/unit/stb/ChildProcess.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <numeric>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

using namespace TR::Utils;
using Texts = std::vector<std::string>;

TEST(UtilsCommandTest, OutputIsReturnedByteForByteWhateverTheExitStatus) {
    const std::pair<const char*, Texts> rows[] = {
        {"echo one; echo two", {"one\n", "two\n"}},
        {"printf 'one\\n\\nhalf'", {"one\n", "\n", "half"}},
        {"printf 'a\\000b\\n\\377'", {std::string("a\0b\n", 4), "\xff"}},
        {"echo x; exit 3", {"x\n"}},
        {"true", {}},
        {"/no/such/command 2>/dev/null", {}},
    };
    for (const auto& [command, lines] : rows) {
        EXPECT_EQ(processPipe(command), lines) << command;
        EXPECT_EQ(getCmdOutput(command), std::accumulate(lines.begin(), lines.end(), std::string()))
            << command;
    }
}

TEST(UtilsCommandTest, OutputAroundThePieceSizeIsWhole) {
    for (const int size : {997, 998, 999, 1996, 1000000}) {
        const std::string output =
            getCmdOutput("head -c " + std::to_string(size) + " /dev/zero | tr '\\000' x");
        EXPECT_EQ(output, std::string(static_cast<std::size_t>(size), 'x')) << size;
    }
}

TEST(UtilsCommandTest, ACommandThatCannotBeStartedGivesNothing) {
    const ChildResult child = runInChild([] {
        const rlimit noMoreFiles{3, 3};
        setrlimit(RLIMIT_NOFILE, &noMoreFiles);
        std::printf("[%s][%zu]", getCmdOutput("echo x").c_str(), processPipe("echo x").size());
    });
    EXPECT_EQ(child.out, "[][0]");
}

TEST(UtilsCommandTest, ACommandsOutputNeverReachesOurOwn) {
    const ChildResult child = runInChild([] {
        runCommand("echo x; echo y >&2; exit 3");
        getCmdOutput("cat; echo z >&2");
    });
    EXPECT_TRUE(child.exitedWith(0));
    EXPECT_EQ(child.out + child.err, "");
}

TEST(UtilsCommandTest, ACommandStartsWithDefaultSignalsInItsOwnGroup) {
    const ChildResult child = runInChild([] {
        for (const int ignored : {SIGPIPE, SIGXFSZ}) std::signal(ignored, SIG_IGN);
        sigset_t blocked;
        sigfillset(&blocked);
        sigprocmask(SIG_SETMASK, &blocked, nullptr);
        std::fputs(getCmdOutput("trap 'echo PIPE; trap - PIPE' PIPE; kill -s PIPE $$; "
                                "(kill -s XFSZ $$); echo not reached")
                       .c_str(),
                   stdout);
        std::fputs(getCmdOutput("cut -d' ' -f5 /proc/$$/stat | grep -cx $$").c_str(), stdout);
    });
    EXPECT_EQ(child.out, "PIPE\n1\n");
}

TEST(UtilsCommandTest, RunningCommandsAreKilledWithAllThatTheyStarted) {
    const ChildResult child = runInChild([] {
        int ends[2];
        if (pipe(ends) != 0) return;  // inherited: its end shows that everybody is gone
        const std::string hold = " >&" + std::to_string(ends[1]) + " & ";
        const std::string command = "echo x" + hold + "sleep 1000" + hold + "wait";
        char x = 0;
        const auto awaitLine = [&] {
            while (read(ends[0], &x, 1) == 1 && x != '\n') {
            }
        };
        // One after the other: a fork of an emulated program copies the emulator's locks as another
        // thread holds them.
        std::thread first([&] { getCmdOutput(command); });
        awaitLine();
        std::thread second([&] { runCommand(command); });
        awaitLine();
        killRunningCommands();
        first.join();
        second.join();
        close(ends[1]);
        while (read(ends[0], &x, 1) > 0) {
        }
        std::printf("gone [%s]", getCmdOutput("echo x").c_str());
    });
    EXPECT_EQ(child.out, "gone []");
}

TEST(UtilsCommandTest, RunningACommandLosesNoPendingInterrupt) {
    sigset_t interrupt;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    pthread_sigmask(SIG_BLOCK, &interrupt, nullptr);
    kill(getpid(), SIGINT);
    runCommand("true");
    const timespec atOnce{};
    EXPECT_EQ(sigtimedwait(&interrupt, nullptr, &atOnce), SIGINT);
}

TEST(UtilsCommandTest, NoDescriptorLeaks) {
    using Iterator = std::filesystem::directory_iterator;
    const auto before = std::distance(Iterator("/proc/self/fd"), Iterator());
    for (int i = 0; i < 5; ++i) {
        getCmdOutput("echo x");
        processPipe("exit 1");
        runCommand("true");
    }
    EXPECT_EQ(std::distance(Iterator("/proc/self/fd"), Iterator()), before);
}
