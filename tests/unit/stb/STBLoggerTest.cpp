#include "stb/src/common/NSRegExp.h"
#include "stb/src/common/STBLogger.h"
#include "tests/unit/stb/ChildProcess.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using Environment = std::map<std::string, std::string>;

constexpr STBLoggerLogParams kApp{"> ", "APP", "test", 1, 1};
constexpr const char* kFile = "src/common/STBThread";

std::string withoutTimes(std::string text) {
    const NSRegExp time("[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} ");
    for (std::vector<std::string> found; time.match(text, found);)
        text.replace(text.find(found[0]), found[0].size(), "TIME ");
    return text;
}

// What a separate process writes to stderr, with the times masked.
std::string logged(const Environment& environment, const std::function<void()>& body) {
    const ChildResult child = runInChild([&] {
        for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
        body();
    });
    EXPECT_TRUE(child.exitedWith(0)) << child.out << child.err;
    EXPECT_EQ(child.out, "");
    return withoutTimes(child.err);
}

void logAs(STBLogLevel level, const char* text, const char* module = "") {
    STBLogger_log(kApp, module, level, 7, kFile, "%s", text);
}

void logEveryLevel() {
    logAs(STBLogLevel::Error, "e");
    logAs(STBLogLevel::Warn, "w");
    logAs(STBLogLevel::Info, "i");
    logAs(STBLogLevel::Debug, "d");
    logAs(STBLogLevel::Trace, "t");
}

std::string greeting(const std::string& level) {
    return "> TIME INFO [STBLogger] Logger for application \"APP\" was successfully initialized "
           "(level:" +
           level + ")\n";
}

const std::string kErrorLine = "> TIME ERROR [STBThread] e\n";
const std::string kWarnLine = "> TIME WARN [STBThread] w\n";
const std::string kInfoLine = "> TIME INFO [STBThread] i\n";
const std::string kDebugLine = "> TIME DEBUG [STBThread] d\n";
const std::string kTraceLine = "> TIME TRACE [STBThread] t\n";

}  // namespace

TEST(STBLoggerTest, TheDaemonsRecordIsTheFixedOne) {
    const STBLoggerLogParams& params = kelmLogParams();
    EXPECT_STREQ(params.prefix, "    ");
    EXPECT_STREQ(params.application, "KELM");
    EXPECT_STREQ(params.category, "debug");
    EXPECT_EQ(params.console, 1);
    EXPECT_EQ(params.syslog, 1);
    EXPECT_EQ(&params, &kelmLogParams());
}

TEST(STBLoggerTest, TheLevelIsInfoUnlessNamedInAnyCase) {
    const std::string lines = kErrorLine + kWarnLine + kInfoLine;
    const std::string unknown = "> TIME ERROR [STBLogger] Unknown log level: '";
    const std::string becomes = "', setting to 'INFO'\n" + greeting("INFO") + lines;
    const std::pair<Environment, std::string> rows[] = {
        {{}, greeting("INFO") + lines},
        {{{"APP_LOG_LEVEL", "debug"}}, greeting("DEBUG") + lines + kDebugLine},
        {{{"APP_LOG_LEVEL", "Trace"}}, greeting("TRACE") + lines + kDebugLine + kTraceLine},
        {{{"APP_LOG_LEVEL", "error"}}, kErrorLine},
        {{{"APP_LOG_LEVEL", "WARN"}}, kErrorLine + kWarnLine},
        {{{"APP_LOG_LEVEL", "NONE"}}, unknown + "NONE" + becomes},
        {{{"APP_LOG_LEVEL", "loud"}}, unknown + "loud" + becomes},
        {{{"APP_LOG_LEVEL", ""}}, unknown + becomes},
    };
    for (const auto& [environment, log] : rows) EXPECT_EQ(logged(environment, logEveryLevel), log);
}

TEST(STBLoggerTest, AnEmptyModuleIsTheBaseNameOfTheFile) {
    const auto log = [] {
        for (const char* file : {"src/common/STBThread", "a.b/Name.cpp", "x.y.cpp", "plain", "d/"})
            STBLogger_log(kApp, "", STBLogLevel::Error, 1, file, "m");
        logAs(STBLogLevel::Error, "m", "Tuner");
    };
    EXPECT_EQ(logged({}, log), greeting("INFO") +
                                   "> TIME ERROR [STBThread] m\n> TIME ERROR [Name] m\n"
                                   "> TIME ERROR [x.y] m\n> TIME ERROR [plain] m\n"
                                   "> TIME ERROR m\n> TIME ERROR [Tuner] m\n");
}

TEST(STBLoggerTest, AListedModuleLogsMoreOrLessThanTheRest) {
    const auto log = [] {
        logEveryLevel();
        logAs(STBLogLevel::Info, "i", "Quiet");
        logAs(STBLogLevel::Debug, "other", "Other");
    };
    const Environment more{{"APP_LOG_LEVEL", "ERROR"},
                           {"APP_LOG_DEBUG_MODULES", "Tuner,STBThread"}};
    EXPECT_EQ(logged(more, log), kErrorLine + kWarnLine + kInfoLine + kDebugLine);
    const Environment less{{"APP_LOG_LEVEL", "INFO"}, {"APP_LOG_WARN_MODULES", "Quiet"}};
    EXPECT_EQ(logged(less, log),
              "> TIME INFO [STBLogger] Setting loglevel for module 'Quiet' to 'WARN'\n" +
                  greeting("INFO") + kErrorLine + kWarnLine + kInfoLine);
}

TEST(STBLoggerTest, ModuleListsAreReadInOrderAndTheLastWins) {
    const Environment environment{{"APP_LOG_WARN_MODULES", "A,,B"},
                                  {"APP_LOG_INFO_MODULES", "C"},
                                  {"APP_LOG_DEBUG_MODULES", "D"},
                                  {"APP_LOG_TRACE_MODULES", "A"}};
    const auto log = [] { logAs(STBLogLevel::Trace, "t", "A"); };
    const std::string setting = "> TIME INFO [STBLogger] Setting loglevel for module ";
    EXPECT_EQ(logged(environment, log), setting + "'A' to 'WARN'\n" + setting + "'B' to 'WARN'\n" +
                                            setting + "'C' to 'INFO'\n" + setting +
                                            "'D' to 'DEBUG'\n" + setting + "'A' to 'TRACE'\n" +
                                            greeting("INFO") + "> TIME TRACE [A] t\n");
}

TEST(STBLoggerTest, AMessageGetsExactlyOneLineFeed) {
    const auto log = [] {
        logAs(STBLogLevel::Error, "one\n");
        logAs(STBLogLevel::Error, "two\n\n");
        logAs(STBLogLevel::Error, "");
    };
    EXPECT_EQ(logged({}, log), greeting("INFO") +
                                   "> TIME ERROR [STBThread] one\n> TIME ERROR [STBThread] two\n\n"
                                   "> TIME ERROR [STBThread] \n");
}

TEST(STBLoggerTest, LineNumbersAndTheThreadIdShowWhenSwitchedOn) {
    const auto log = [] {
        logAs(STBLogLevel::Error, "m");
        STBLogger_log(kApp, "M", STBLogLevel::Error, 0, kFile, "m");  // not a line
    };
    EXPECT_EQ(logged({{"APP_LOG_LINENUM", "1"}, {"APP_LOG_LEVEL", "ERROR"}}, log),
              "> TIME ERROR [STBThread:7] m\n> TIME ERROR [M] m\n");
    const std::string text = logged({{"APP_LOG_THREAD_ID", "y"}}, log);
    EXPECT_TRUE(NSRegExp("> TIME ERROR 0x[0-9a-f]+ \\[STBThread\\] m\n").match(text)) << text;
}

TEST(STBLoggerTest, SwitchesAreOnForOneAndYOnly) {
    const auto log = [] { logAs(STBLogLevel::Error, "e"); };
    for (const char* off : {"yes", "Y", "0", "", "on", "11"}) {
        EXPECT_EQ(logged({{"APP_LOG_LINENUM", off},
                          {"APP_LOG_THREAD_ID", off},
                          {"APP_LOG_USE_COLORS", off},
                          {"APP_LOG_SYSLOG", off}},
                         log),
                  greeting("INFO") + kErrorLine);
    }
}

TEST(STBLoggerTest, ColouredLinesCarryALetterAndEscapes) {
    const Environment environment{{"APP_LOG_LEVEL", "TRACE"}, {"APP_LOG_USE_COLORS", "y"}};
    const std::string text = logged(environment, logEveryLevel);
    const std::string expected =
        "\x1b[31m> TIME E [STBThread] e\x1b[0m\n\x1b[33m> TIME W [STBThread] w\x1b[0m\n"
        "\x1b[34m> TIME I [STBThread] i\x1b[0m\n\x1b[0m> TIME D [STBThread] d\x1b[0m\n"
        "\x1b[0m> TIME T [STBThread] t\x1b[0m\n";
    ASSERT_GE(text.size(), expected.size());
    EXPECT_EQ(text.substr(text.size() - expected.size()), expected);
}

TEST(STBLoggerTest, ALongMessageIsCutButStillEndsInItsResetAndALineFeed) {
    const struct {
        const char* colours;
        std::size_t size;
        std::string ending;
    } rows[] = {{"0", 1024, "xxx\n"}, {"1", 1033, "xxx\x1b[0m\n"}};
    for (const auto& [colours, size, ending] : rows) {
        const ChildResult child = runInChild([wanted = colours] {
            setenv("APP_LOG_LEVEL", "ERROR", 1);
            setenv("APP_LOG_USE_COLORS", wanted, 1);
            logAs(STBLogLevel::Error, std::string(5000, 'x').c_str());
        });
        EXPECT_EQ(child.err.size(), size);
        EXPECT_EQ(child.err.substr(child.err.size() - ending.size()), ending);
    }
}

TEST(STBLoggerTest, OneAndYSwitchToSyslog) {
    for (const char* on : {"1", "y"}) {
        EXPECT_EQ(logged({{"APP_LOG_SYSLOG", on}, {"APP_LOG_LEVEL", "TRACE"}}, logEveryLevel),
                  "openlog(null, 3, 8)\n"
                  "syslog 6: Logger for application \"APP\" was successfully initialized "
                  "(level:TRACE)\n"
                  "syslog 3: e\nsyslog 4: w\nsyslog 6: i\nsyslog 7: d\nsyslog 8: t\n");
    }
}

TEST(STBLoggerTest, AnEmptyApplicationIsUnknownInSyslog) {
    const auto log = [] {
        constexpr STBLoggerLogParams kNameless{"", "", "", 1, 1};
        STBLogger_log(kNameless, "M", STBLogLevel::Error, 1, "f", "m");
    };
    EXPECT_EQ(logged({{"_LOG_SYSLOG", "1"}}, log),
              "openlog(null, 3, 8)\n"
              "syslog 6: Logger for application \"UNKNOWN\" was successfully initialized "
              "(level:INFO)\n"
              "syslog 3: m\n");
}

TEST(STBLoggerTest, EveryApplicationHasItsOwnLogger) {
    const auto log = [] {
        constexpr STBLoggerLogParams kOther{"", "OTHER", "", 1, 1};
        STBLogger_log(kOther, "M", STBLogLevel::Debug, 1, "f", "d");
        logEveryLevel();
        STBLogger_log(kOther, "M", STBLogLevel::Debug, 1, "f", "again");
    };
    EXPECT_EQ(logged({{"APP_LOG_LEVEL", "ERROR"}, {"OTHER_LOG_LEVEL", "DEBUG"}}, log),
              "TIME INFO [STBLogger] Logger for application \"OTHER\" was successfully "
              "initialized (level:DEBUG)\nTIME DEBUG [M] d\n" +
                  kErrorLine + "TIME DEBUG [M] again\n");
}

TEST(STBLoggerTest, NullTextsAreEmptyTexts) {
    const auto log = [] {
        constexpr STBLoggerLogParams kNull{nullptr, nullptr, nullptr, 1, 1};
        STBLogger_log(kNull, nullptr, STBLogLevel::Error, 1, nullptr, "m");
    };
    const std::string text = logged({}, log);
    EXPECT_NE(text.find("TIME ERROR m\n"), std::string::npos) << text;
}

TEST(STBLoggerTest, LinesOfManyThreadsNeverInterleave) {
    constexpr int kThreads = 4;
    constexpr int kLines = 50;  // all of them fit a pipe, should its reader be slow
    const auto log = [] {
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i)
            threads.emplace_back([i] {
                const std::string text(200, static_cast<char>('a' + i));
                for (int line = 0; line < kLines; ++line) logAs(STBLogLevel::Error, text.c_str());
            });
        for (std::thread& thread : threads) thread.join();
    };
    std::istringstream text(logged({{"APP_LOG_LEVEL", "ERROR"}}, log));
    const std::string start = "> TIME ERROR [STBThread] ";
    int lines = 0;
    for (std::string line; std::getline(text, line); ++lines) {
        ASSERT_EQ(line.substr(0, start.size()), start);
        ASSERT_EQ(line.substr(start.size()), std::string(200, line.back()));
    }
    EXPECT_EQ(lines, kThreads * kLines);
}

namespace {

// A standard error that somebody else reads: the reader's end, then the writer's.
struct Stream {
    const char* name;
    std::function<std::array<int, 2>()> open;
};

std::array<int, 2> openPipe() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) std::abort();
    return ends;
}

std::array<int, 2> openSocket() {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) std::abort();
    return ends;
}

std::array<int, 2> openTerminal() {
    const int reader = posix_openpt(O_RDWR | O_NOCTTY);
    char name[64] = "";
    if (grantpt(reader) != 0 || unlockpt(reader) != 0 || ptsname_r(reader, name, sizeof name) != 0)
        std::abort();
    return {reader, open(name, O_RDWR | O_NOCTTY)};
}

std::ostream& operator<<(std::ostream& stream, const Stream& row) {
    return stream << row.name;
}

// What can be read until nothing comes any more for a moment; a terminal hands it on with a delay.
std::string drained(int reader) {
    std::string text;
    std::array<char, 4096> piece{};
    for (pollfd polled{reader, POLLIN, 0}; poll(&polled, 1, 50) > 0;) {
        const ssize_t count = read(reader, piece.data(), piece.size());
        if (count <= 0) break;
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
    return text;
}

// How many lines with the text are whole, and how many are counted as dropped.
std::pair<int, int> writtenAndDropped(const std::string& log) {
    std::istringstream lines(log);
    const NSRegExp whole(" ERROR \\[STBThread\\] <x{200}>\r?$");
    const NSRegExp count("^STBLogger: ([0-9]+) lines could not be written and were dropped");
    std::pair<int, int> result;
    std::vector<std::string> groups;
    for (std::string line; std::getline(lines, line);) {
        if (whole.match(line)) ++result.first;
        if (count.match(line, groups)) result.second += std::stoi(groups[1]);
    }
    return result;
}

class STBLoggerReaderTest : public ::testing::TestWithParam<Stream> {};

}  // namespace

TEST_P(STBLoggerReaderTest, LinesThatAStalledReaderBlocksAreCounted) {
    const ChildResult child = runInChild([] {
        const auto [reader, writer] = GetParam().open();
        dup2(writer, STDERR_FILENO);
        constexpr int kLines = 5000;  // far more than any of the streams holds
        for (int i = 0; i < kLines; ++i)
            logAs(STBLogLevel::Error, ("<" + std::string(200, 'x') + ">").c_str());
        std::string text = drained(reader);
        int tries = 0;
        for (; text.find("] after") == std::string::npos; ++tries) {
            logAs(STBLogLevel::Error, "after");
            text += drained(reader);
        }
        const auto [written, dropped] = writtenAndDropped(text);
        std::printf("%s", written > 0 && dropped == kLines - written + tries - 1 ? "all" : "some");
    });
    EXPECT_TRUE(child.exitedWith(0));
    EXPECT_EQ(child.out, "all");
}

TEST_P(STBLoggerReaderTest, AReaderThatIsGoneLosesOnlyTheLog) {
    const ChildResult child = runInChild([] {
        const auto [reader, writer] = GetParam().open();
        dup2(writer, STDERR_FILENO);
        std::signal(SIGPIPE, SIG_IGN);
        std::signal(SIGHUP, SIG_IGN);
        close(reader);
        for (int i = 0; i < 3; ++i) logAs(STBLogLevel::Error, "e");
        std::printf("alive");
    });
    EXPECT_EQ(child.out, "alive");
}

INSTANTIATE_TEST_SUITE_P(Streams, STBLoggerReaderTest,
                         ::testing::Values(Stream{"Pipe", openPipe}, Stream{"Socket", openSocket},
                                           Stream{"Terminal", openTerminal}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(STBLoggerTest, LinesAndOtherOutputKeepTheirOrderInOneFile) {
    const ChildResult child = runInChild([] {
        FILE* const file = std::tmpfile();
        const int before = dup(STDOUT_FILENO);
        dup2(fileno(file), STDOUT_FILENO);
        dup2(fileno(file), STDERR_FILENO);
        setenv("APP_LOG_LEVEL", "ERROR", 1);
        for (const char* text : {"1", "2"}) {
            logAs(STBLogLevel::Error, text);
            std::puts("other");
            std::fflush(stdout);
        }
        dup2(before, STDOUT_FILENO);
        std::rewind(file);
        for (int byte = 0; (byte = std::fgetc(file)) != EOF;) std::putchar(byte);
    });
    EXPECT_EQ(withoutTimes(child.out),
              "> TIME ERROR [STBThread] 1\nother\n> TIME ERROR [STBThread] 2\nother\n");
}
