// What a starter may leave to the daemon: descriptors, signals, limits, surroundings.

#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <functional>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A sanitizer writes a file before main, and needs room on every thread's stack.
constexpr rlim_t kSmallFile = kIsSanitized ? 16 : 0;
constexpr rlim_t kSmallStack = kIsSanitized ? 4U << 20 : 256U << 10;

struct Row {
    const char* name;
    std::function<void()> prepare;  ///< in the daemon's process
};

std::function<void()> closing(std::vector<int> descriptors) {
    return [descriptors = std::move(descriptors)] {
        for (const int descriptor : descriptors) close(descriptor);
    };
}

std::function<void()> ignoring(int signal) {
    return [signal] { std::signal(signal, SIG_IGN); };
}

std::function<void()> blocking(int signal) {
    return [signal] {
        sigset_t set;
        sigfillset(&set);
        if (signal != 0) {
            sigemptyset(&set);
            sigaddset(&set, signal);
        }
        sigprocmask(SIG_SETMASK, &set, nullptr);
    };
}

std::function<void()> limited(__rlimit_resource resource, rlim_t soft) {
    return [resource, soft] {
        rlimit limit{};
        getrlimit(resource, &limit);
        limit.rlim_cur = soft;
        setrlimit(resource, &limit);
    };
}

std::function<void()> with(const char* variable, std::string value) {
    return [variable, value = std::move(value)] { setenv(variable, value.c_str(), 1); };
}

// All but the bus and what a sanitizer or a count of coverage has to know.
void emptyEnvironment() {
    const std::regex needed("^(\\w*_OPTIONS|DBUS_SESSION_BUS_ADDRESS|KELM_COUNTS_FOLDER)=");
    static std::vector<char*> kept;
    for (char** entry = environ; *entry != nullptr; ++entry)
        if (std::regex_search(*entry, needed)) kept.push_back(*entry);
    kept.push_back(nullptr);
    environ = kept.data();
}

void removedFolder() {
    char folder[] = "/tmp/removed-XXXXXX";
    if (mkdtemp(folder) == nullptr || chdir(folder) != 0 || rmdir(folder) != 0) _exit(1);
}

std::vector<Row> rows() {
    return {
        {"NoStandardInput", closing({0})},
        {"NoStandardOutput", closing({1})},
        {"NoStandardError", closing({2})},
        {"NoInputAndError", closing({0, 2})},
        {"NoStandardDescriptors", closing({0, 1, 2})},
        {"InterruptIgnored", ignoring(SIGINT)},
        {"PipeIgnored", ignoring(SIGPIPE)},
        {"ChildIgnored", ignoring(SIGCHLD)},
        {"InterruptBlocked", blocking(SIGINT)},
        {"PipeBlocked", blocking(SIGPIPE)},
        {"ChildBlocked", blocking(SIGCHLD)},
        {"EverySignalBlocked", blocking(0)},
        {"FewDescriptors", limited(RLIMIT_NOFILE, 20)},
        {"SmallFileSize", limited(RLIMIT_FSIZE, kSmallFile)},
        {"FewProcesses", limited(RLIMIT_NPROC, 512)},
        {"SmallStack", limited(RLIMIT_STACK, kSmallStack)},
        {"NoCore", limited(RLIMIT_CORE, 0)},
        {"OddLanguage", with("LANG", "xx_XX.NONSENSE")},
        {"OddLocale", with("LC_ALL", "tr_TR.UTF-8")},
        {"CLocale", with("LC_ALL", "C")},
        {"NoTimeZone", with("TZ", "")},
        {"MissingTimeZone", with("TZ", ":No/Such/Zone")},
        {"OddTimeZone", with("TZ", "<%s%n>+167:59:59")},
        {"HugeTimeZone", with("TZ", std::string(100'000, 'Z'))},
        {"EmptyEnvironment", emptyEnvironment},
        {"RemovedFolder", removedFolder},
        {"NothingMayBeCreatedReadable", [] { umask(0777); }},
    };
}

// A daemon that may not ask who owns its name logs so. The file in the place of its standard error
// must not receive that line.
constexpr char kOwnersAreSecret[] = R"(<policy context="mandatory">
<deny send_interface="org.freedesktop.DBus" send_member="GetNameOwner"/></policy>)";

class StartStateTest : public DaemonTest, public ::testing::WithParamInterface<Row> {};

TEST_P(StartStateTest, TheTreeIsPublishedAndSigintStopsInOrder) {
    start(kOwnersAreSecret, {}, GetParam().prepare);
    expectAnswers();
    expectOrderlyStop();
}

INSTANTIATE_TEST_SUITE_P(StartStates, StartStateTest, ::testing::ValuesIn(rows()),
                         [](const auto& row) { return std::string(row.param.name); });

class LogReaderTest : public DaemonTest {};

// The daemon logs that it has no bus, and lives on.
TEST_F(LogReaderTest, AReaderThatStallsOrIsGoneDelaysAndEndsNothing) {
    for (const bool hasReader : {true, false}) {
        SCOPED_TRACE(hasReader);
        box::clearCalls("ps");
        launch({{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus"}}, [hasReader] {
            int ends[2];
            if (pipe(ends) != 0) _exit(1);
            fcntl(ends[1], F_SETFL, O_NONBLOCK);
            while (write(ends[1], "full", 4) > 0) {
            }
            fcntl(ends[1], F_SETFL, 0);
            dup2(ends[1], STDOUT_FILENO);
            dup2(ends[1], STDERR_FILENO);
            close(ends[1]);
            if (!hasReader) close(ends[0]);
        });
        ASSERT_TRUE(box::waitForCalls("ps", 4));
        expectOrderlyStop();
    }
}

}  // namespace
