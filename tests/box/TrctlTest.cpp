#include "tests/box/TrctlTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include <sys/mount.h>

namespace {

// An emulator takes ten times as long for each: a tenth of them there.
#ifdef KELM_EMULATED
constexpr int kMany = 1'000;
#else
constexpr int kMany = 10'000;
#endif

const std::string kOutput = "/tmp/trctl-output";
const std::string kErrors = "/tmp/trctl-errors";

const std::string kConfig = "Device.Services.STBService.1.X_Kelm.Config.";
const std::string kHost = kConfig + "SyslogHost";
const std::string kInterval = "Device.Services.STBService.1.ServiceMonitoring.SampleInterval";
const std::string kUpTime = "Device.DeviceInfo.UpTime";

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::ptrdiff_t linesOf(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
}

}  // namespace

std::unique_ptr<Child> TrctlTest::begin(const Words& arguments) {
    Words command = {"sh", "-c", "exec \"$@\" >" + kOutput + " 2>" + kErrors, "sh",
                     KELM_TRCTL_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return std::make_unique<Child>(command, "/tmp/trctl-shell");
}

TrctlTest::Result TrctlTest::end(Child& trctl) {
    const auto end = trctl.waitForEnd();
    const bool byItself = end && end->signal == 0;
    return {byItself ? end->code : -1, box::readFile(kOutput), box::readFile(kErrors)};
}

TrctlTest::Result TrctlTest::run(const Words& arguments) {
    return end(*begin(arguments));
}

TrctlTest::Result TrctlTest::bash(const std::string& script) {
    const std::string text = "TRCTL=" KELM_TRCTL_PROGRAM "\n" + script;
    Child shell({"/usr/host/bin/bash", "-c", "exec >" + kOutput + " 2>" + kErrors + "\n" + text},
                "/tmp/trctl-shell");
    return end(shell);
}

std::string TrctlTest::printed() {
    return box::readFile(kOutput);
}

namespace {

TEST_F(TrctlTest, GetPrintsWhatTheBusReads) {
    start();
    EXPECT_EQ(run({"get", "Device.DeviceInfo.Manufacturer"}).output,
              "Device.DeviceInfo.Manufacturer = KELM\n");
    const Result all = run({"get", "Device."});
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(linesOf(all.output),
              static_cast<std::ptrdiff_t>(client().listParametersOnly().list.size()));
    EXPECT_EQ(linesOf(run({"get", "Device.IP.Interface.?.Name"}).output), 2);
    const Result unknown = run({"get", "Device.Nope"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.errors, "trctl: there is no Device.Nope\n");
}

TEST_F(TrctlTest, SetWritesAndReadsBack) {
    start();
    const Result result = run({"set", kHost, "10.0.0.9"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, kHost + " = 10.0.0.9\n");
    EXPECT_EQ(box::readFile("/var/kelm/syslog_host"), "10.0.0.9");
    EXPECT_EQ(run({"set", kHost, ""}).status, 0);
    EXPECT_EQ(value(kHost), "");
    EXPECT_EQ(run({"set", kHost, "-5"}).output, kHost + " = -5\n");
    EXPECT_EQ(run({"set", kInterval, "+7"}).status, 0);
}

TEST_F(TrctlTest, SetPrintsWhyTheDaemonDoesNotWrite) {
    start();
    const Result readOnly = run({"set", kUpTime, "1"});
    EXPECT_EQ(readOnly.status, 1);
    EXPECT_EQ(readOnly.errors, "trctl: " + kUpTime + " is read-only\n");
    const Result unknown = run({"set", "Device.Nope", "1"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.errors, "trctl: there is no parameter Device.Nope\n");
    const Result text = run({"set", kInterval, "abc"});
    EXPECT_EQ(text.status, 1);
    EXPECT_TRUE(has(text.errors, "does not take this value: it is not a number\n"));
    const Result bytes = run({"set", kHost, "\xff"});
    EXPECT_EQ(bytes.status, 1);
    EXPECT_TRUE(has(bytes.errors, "not valid UTF-8")) << bytes.errors;
}

TEST_F(TrctlTest, SetPrintsAValueThatReadsBackDifferently) {
    start();
    const Result cut = run({"set", kInterval, "42abc"});
    EXPECT_EQ(cut.status, 1);
    EXPECT_EQ(cut.output, kInterval + " = 42\n");
    EXPECT_TRUE(has(cut.errors, "only the number at its beginning")) << cut.errors;
}

TEST_F(TrctlTest, SetReportsAWriteThatAFullDiskRefuses) {
    ASSERT_EQ(mount("none", "/var/kelm", "tmpfs", 0, "size=64k"), 0);
    start();
    ASSERT_EQ(run({"set", kHost, "10.0.0.1"}).status, 0);
    const Result result = run({"set", kHost, std::string(100'000, 'x')});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, kHost + " = 10.0.0.1\n");
    EXPECT_TRUE(has(result.errors, "did not take")) << result.errors;
}

TEST_F(TrctlTest, ControlCharactersAreEscapedAndStayWholeInJson) {
    start();
    box::writeFile("/var/kelm/syslog_host", "a\x1b[31m\n\xC2\x9B\xE2\x80\xAE\\b");
    EXPECT_EQ(run({"get", kHost}).output, kHost + " = a\\x1b[31m\\n\\u009b\\u202e\\\\b\n");
    EXPECT_EQ(run({"get", "--json", kHost}).output,
              "{\n  \"" + kHost + "\": \"a\\u001b[31m\\n\\u009b\\u202e\\\\b\"\n}\n");
    box::writeFile("/tmp/saved.json", printed());
    EXPECT_EQ(run({"diff", "/tmp/saved.json", kHost}).status, 0);
}

TEST_F(TrctlTest, NoCommandAddsAnAddress) {
    start();
    box::writeFile("/tmp/saved.json", R"({"Device.Nope": "1", "Device.Gone.": "2"})");
    const Words before = listed();
    for (const char* path : {"Device.Nope", "Device.Nope.", "Nope*", "", ".", "Device.IP", "[",
                             "Device.DeviceInfo.UpTime.", "\xff"}) {
        for (const char* command : {"get", "list", "tree", "info", "watch"})
            EXPECT_EQ(run({command, path}).status, 1) << command << ' ' << path;
        EXPECT_EQ(run({"set", path, "1"}).status, 1) << path;
        EXPECT_NE(run({"diff", "/tmp/saved.json", path}).status, 0) << path;
    }
    run({"changes"});
    run({"tree"});
    run({"info", "**"});
    EXPECT_EQ(listed(), before);
}

TEST_F(TrctlTest, TreeAndListHaveEveryAddress) {
    start();
    const auto all = static_cast<std::ptrdiff_t>(listed().size());
    EXPECT_EQ(linesOf(run({"list"}).output), all);
    EXPECT_GE(linesOf(run({"tree"}).output), all);
    EXPECT_TRUE(has(printed(), "├── ")) << printed();
    EXPECT_TRUE(has(printed(), "Manufacturer = KELM\n"));
    EXPECT_FALSE(has(run({"tree", "--ascii"}).output, "├"));
    // A branch that no cycle changes.
    const std::string still = "Device.Services.STBService.1.Capabilities.";
    EXPECT_EQ(bash("LC_ALL=C \"$TRCTL\" tree " + still).output,
              run({"tree", "--ascii", still}).output);
    EXPECT_EQ(run({"list", "--level", "Device."}).output,
              "Device.DeviceInfo.\nDevice.Ethernet.\nDevice.IP.\nDevice.Services.\n");
}

TEST_F(TrctlTest, WaitReturnsWhenTheTreeIsWhole) {
    box::setFault("ps", "slow 1");
    startBus();
    connect();
    const auto trctl = begin({"wait"});
    launch();
    const Result waited = end(*trctl);
    EXPECT_EQ(waited.status, 0) << waited.errors;
    EXPECT_EQ(value("Device.DeviceInfo.Manufacturer"), "KELM");
    EXPECT_EQ(run({"list", "Device.DeviceInfo.DeviceLog"}).status, 0);
    EXPECT_EQ(waited.output + waited.errors, "");
    const auto forValue = begin({"wait", kHost + "=10.0.0.9"});
    ASSERT_TRUE(client().set(kHost, "10.0.0.9\n").ok);
    EXPECT_EQ(end(*forValue).status, 0);
    const Result late = run({"wait", kHost + "=10.0.0.8", "--timeout", "0.2"});
    EXPECT_EQ(late.status, 1);
    EXPECT_EQ(late.errors, "trctl: " + kHost + " has the value \"10.0.0.9\\n\" after 0.2 s\n");
}

TEST_F(TrctlTest, WaitExits3WithoutADaemonOrABus) {
    startBus();
    const Result noDaemon = run({"wait", "--timeout", "0.2"});
    EXPECT_EQ(noDaemon.status, 3);
    EXPECT_TRUE(has(noDaemon.errors, "Start kelm-trd")) << noDaemon.errors;
    EXPECT_EQ(run({"wait", kHost + "=x", "--timeout", "0.2"}).status, 3);
    const auto trctl = begin({"wait", "--timeout", "1000"});
    // The bus itself, this test and trctl.
    TrClient names(bus().address(), "org.freedesktop.DBus");
    ASSERT_TRUE(box::waitUntil([&] {
        return names.call({DBUS_INTERFACE_DBUS, "ListNames", {}, {}, DBUS_PATH_DBUS}).list.size() >
               2;
    }));
    bus().kill();
    EXPECT_EQ(end(*trctl).status, 3);
}

TEST_F(TrctlTest, InfoShowsWhatIsKnown) {
    start();
    EXPECT_EQ(run({"info", "Device.DeviceInfo.Manufacturer"}).output,
              "address        Device.DeviceInfo.Manufacturer\nkind           parameter\n"
              "type           string\nvalue          KELM\nwritable       no\n"
              "forced inform  yes\nsource         constant\nmeaning        maker\n"
              "watched        unknown\n");
    EXPECT_TRUE(has(run({"info", kHost}).output, "writable       yes\n"));
    watch({kUpTime});
    EXPECT_TRUE(has(run({"info", kUpTime}).output, "\nwatched        yes\n")) << printed();
    EXPECT_TRUE(has(run({"info", kHost}).output, "\nwatched        no\n")) << printed();
    EXPECT_TRUE(has(run({"info", "--json", kUpTime}).output, R"("unit": "seconds")"));
    EXPECT_TRUE(has(printed(), "\"watched\": true }\n")) << printed();
    Words every = listed();
    const auto count = static_cast<std::ptrdiff_t>(every.size());
    every.insert(every.begin(), {"info", "--json"});
    EXPECT_EQ(linesOf(run(every).output), count);
    EXPECT_FALSE(has(printed(), R"("meaning": null)")) << "an address without a description";
}

TEST_F(TrctlTest, DiffFindsTheSettingThatChanged) {
    start();
    ASSERT_EQ(run({"get", "--json", "Device."}).status, 0);
    box::writeFile("/tmp/saved.json", printed());
    EXPECT_EQ(run({"diff", "/tmp/saved.json", kConfig}).status, 0);
    EXPECT_EQ(printed(), "");
    ASSERT_TRUE(client().set(kHost, "10.0.0.9").ok);
    EXPECT_EQ(run({"diff", "/tmp/saved.json", kConfig}).status, 1);
    EXPECT_EQ(printed(), "- " + kHost + " = 192.168.1.1\n+ " + kHost + " = 10.0.0.9\n");
    EXPECT_EQ(run({"diff", "/tmp/saved.json"}).status, 1);
    EXPECT_EQ(bash("\"$TRCTL\" diff - '" + kConfig + "' </tmp/saved.json").status, 1);
}

TEST_F(TrctlTest, DiffPrintsWhatOnlyOneSideHas) {
    start();
    box::writeFile("/tmp/saved.json", R"({"Device.Old.A": "1"})");
    EXPECT_EQ(run({"diff", "/tmp/saved.json", "Device.Old.", kHost}).status, 1);
    EXPECT_EQ(printed(), "- Device.Old.A = 1\n+ " + kHost + " = 192.168.1.1\n");
}

TEST_F(TrctlTest, DiffWithAForeignFileExits2) {
    start();
    for (const char* text : {"", "{", "[]", "{\"a\": 1}", "a = b\n", "{\"a\":\"b\"} x"}) {
        box::writeFile("/tmp/saved.json", text);
        const Result result = run({"diff", "/tmp/saved.json"});
        EXPECT_EQ(result.status, 2) << text;
        EXPECT_TRUE(has(result.errors, "trctl: /tmp/saved.json: ")) << result.errors;
        EXPECT_EQ(result.output, "");
    }
    EXPECT_EQ(run({"diff", "/tmp/missing"}).status, 2);
    EXPECT_EQ(run({"diff", "/tmp"}).errors, "trctl: /tmp: Is a directory\n");
}

TEST_F(TrctlTest, DiffWithAnUnknownPathExits2) {
    start();
    box::writeFile("/tmp/saved.json", R"({"Device.Old.A": "1"})");
    const Result result = run({"diff", "/tmp/saved.json", "Device.Nope", "Device.Old."});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "- Device.Old.A = 1\n");
    EXPECT_EQ(result.errors, "trctl: there is no Device.Nope\n");
}

TEST_F(TrctlTest, ChangesPrintsTheLinesOfTheCycleAndMarksABadOne) {
    start();
    EXPECT_EQ(run({"changes"}).output, "");
    const std::string ssid = "Device.Services.STBService.1.X_Kelm.WiFiStatus.SSID";
    watch({kUpTime, ssid});
    ASSERT_TRUE(box::waitUntil([] { return has(run({"changes"}).output, kUpTime); }));
    EXPECT_EQ(run({"changes"}).status, 0);
    box::writeFile("/run/kelm-box/iw/wlan0",
                   "Connected to 9c:3d:cf:12:ab:ef (on wlan0)\n\tSSID: say \"hi\"\n");
    ASSERT_TRUE(box::waitUntil([] { return run({"changes"}).status == 1; }));
    EXPECT_TRUE(has(printed(), "bad (")) << printed();
    EXPECT_TRUE(has(printed(), "say \"hi\"")) << printed();
    EXPECT_TRUE(has(run({"changes", "--json"}).output, "\"bad\": \"")) << printed();
    EXPECT_TRUE(has(printed(), "say \\\"hi\\\"")) << printed();
}

TEST_F(TrctlTest, WatchPrintsChangesUntilItIsInterrupted) {
    start();
    const auto trctl = begin({"watch", "--interval", "0.1", kHost, "Device.IP."});
    int round = 0;
    // The first look may come after the first of these.
    ASSERT_TRUE(box::waitUntil([&] {
        client().set(kHost, "10.0.0." + std::to_string(++round % 200));
        return linesOf(printed()) >= 2;
    }));
    trctl->send(SIGINT);
    const Result result = end(*trctl);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    constexpr std::size_t kDateLine = sizeof "2026-11-22";
    EXPECT_EQ(result.output.find('\n'), kDateLine - 1) << result.output;
    EXPECT_EQ(result.output.substr(kDateLine + 8, kHost.size() + 3), " " + kHost + ": ");
    EXPECT_TRUE(has(result.output, " -> 10.0.0.")) << result.output;
}

TEST_F(TrctlTest, WatchEndsByItselfAfterChanges) {
    start();
    int value = 0;
    // What is set, again and again until the program has seen enough.
    const auto watched = [&](const Words& options) {
        Words words = {"watch", "--interval", "0.1", kHost, kUpTime};
        words.insert(words.end(), options.begin(), options.end());
        const auto trctl = begin(words);
        EXPECT_TRUE(box::waitUntil([&] {
            client().set(kHost, std::to_string(++value));
            return !trctl->isRunning();
        }));
        return end(*trctl);
    };
    const Result counted = watched({"--no-clocks", "--count", "3"});
    EXPECT_EQ(counted.status, 0) << counted.errors;
    EXPECT_EQ(linesOf(counted.output), 4) << counted.output;
    EXPECT_FALSE(has(counted.output, kUpTime)) << counted.output;
    const Result once = watched({"--except", kUpTime, "--once", "--json"});
    EXPECT_EQ(once.status, 0) << once.errors;
    EXPECT_EQ(linesOf(once.output), 1) << once.output;
    EXPECT_TRUE(has(once.output, R"("address": ")" + kHost + R"(", "before": ")")) << once.output;
    EXPECT_EQ(run({"watch", "--once", "--count", "2"}).status, 2);
    EXPECT_EQ(run({"watch", "--no-clocks", kUpTime}).status, 1);
}

TEST_F(TrctlTest, WatchShowsHowFastCountersGrow) {
    start();
    const auto trctl = begin({"watch", "--interval", "0.5", "--rate", "Device.IP."});
    const auto sendPacket = [] {
        Child shell({"/usr/host/bin/bash", "-c", "echo >/dev/udp/239.255.0.1/1234"}, "/tmp/sent");
        shell.waitForEnd();
    };
    ASSERT_TRUE(box::waitUntil([&] {
        sendPacket();
        return has(printed(), "/s)\n");
    })) << printed();
    EXPECT_FALSE(has(printed(), "-> 0 (")) << printed();
    trctl->send(SIGINT);
    EXPECT_EQ(end(*trctl).status, 0);
}

TEST_F(TrctlTest, AnInterruptEndsWatchAlsoWhileTheDaemonHangs) {
    start();
    const auto trctl = begin({"watch", "--interval", "0.05", kHost});
    int round = 0;
    ASSERT_TRUE(box::waitUntil([&] {
        client().set(kHost, std::to_string(++round));
        return linesOf(printed()) >= 1;
    }));
    daemon().send(SIGSTOP);
    trctl->send(SIGINT);
    EXPECT_EQ(end(*trctl).status, 0);
    daemon().send(SIGCONT);
}

TEST_F(TrctlTest, WatchExits3WhenTheDaemonDies) {
    start();
    const auto trctl = begin({"watch", "--interval", "0.1"});
    ASSERT_TRUE(box::waitUntil([] { return has(printed(), kUpTime); }));
    daemon().send(SIGKILL);
    const Result result = end(*trctl);
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(has(result.errors, "kelm-trd")) << result.errors;
}

TEST_F(TrctlTest, WatchExits3WhenTheBusDies) {
    start();
    const auto trctl = begin({"watch", "--interval", "0.1"});
    ASSERT_TRUE(box::waitUntil([] { return has(printed(), kUpTime); }));
    bus().kill();
    const Result result = end(*trctl);
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(has(result.errors, "--bus ADDRESS")) << result.errors;
}

TEST_F(TrctlTest, Exits3WithAdviceWithoutADaemonOrABus) {
    startBus();
    const Result noDaemon = run({"get", kUpTime});
    EXPECT_EQ(noDaemon.status, 3);
    EXPECT_TRUE(has(noDaemon.errors, "Start kelm-trd")) << noDaemon.errors;
    for (const char* address : {"unix:path=/tmp/no-bus", "nonsense", ";", "unix:"}) {
        const Result noBus = run({"--bus", address, "get", kUpTime});
        EXPECT_EQ(noBus.status, 3) << address;
        EXPECT_TRUE(has(noBus.errors, "--bus ADDRESS")) << noBus.errors;
    }
}

TEST_F(TrctlTest, TheBusOnTheCommandLineComesFirst) {
    start();
    EXPECT_EQ(bash("DBUS_SESSION_BUS_ADDRESS=unix:path=/nope \"$TRCTL\" get " + kUpTime +
                   " --bus " + bus().address())
                  .status,
              0);
}

TEST_F(TrctlTest, AClosedPipeEndsItInSilence) {
    start();
    for (const char* command : {"list", "get Device.", "tree", "--help", "watch --interval 0.1"}) {
        const Result result =
            bash(std::string("\"$TRCTL\" ") + command + " | true; echo ${PIPESTATUS[0]}");
        EXPECT_TRUE(result.output == "0\n" || result.output == "141\n") << command << result.output;
        EXPECT_EQ(result.errors, "") << command;
    }
    EXPECT_EQ(bash("\"$TRCTL\" set " + kHost + " 10.1.1.1 >&-").status, 0);
    EXPECT_EQ(value(kHost), "10.1.1.1");
    const Result full = bash("\"$TRCTL\" list >/dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_TRUE(has(full.errors, "No space left on device")) << full.errors;
}

TEST_F(TrctlTest, TenThousandParametersAreListedAndRead) {
    start();
    // The flag query is what adds an address.
    for (int i = 0; i < kMany; ++i)
        client().getWritable("Device.Many." + std::to_string(i % 100) + ".P" + std::to_string(i));
    EXPECT_EQ(linesOf(run({"get", "Device.Many."}).output), kMany);
    EXPECT_EQ(linesOf(run({"tree", "Device.Many."}).output), kMany + 101);
    EXPECT_EQ(linesOf(run({"list", "--level", "Device.Many."}).output), 100);
    ASSERT_EQ(run({"get", "--json", "Device.Many."}).status, 0);
    box::writeFile("/tmp/saved.json", printed());
    EXPECT_EQ(run({"diff", "/tmp/saved.json", "Device.Many."}).status, 0);
}

TEST_F(TrctlTest, AnOverLargeValueDoesNotHideOthers) {
    // Each byte takes six in the published text.
    box::writeFile("/tmp/syslog", std::string(24U << 20, '\x01'));
    start();
    const Result result = run({"get", "Device.DeviceInfo."});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(has(result.output, kUpTime)) << result.output;
    EXPECT_TRUE(has(result.errors, "larger than the bus carries")) << result.errors;
}

// What bash would offer for a command line up to the cursor.
std::string completions(const std::string& line, const std::string& extra = "") {
    return "source " KELM_TRCTL_FOLDER "/trctl.bash\n" + extra + "COMP_LINE='trctl " + line +
           "'\nCOMP_POINT=${#COMP_LINE}\nCOMP_CWORD=0\nword=${COMP_LINE##*[[:space:]=]}\n"
           "COMP_WORDS=(\"$word\")\n_trctl \"$TRCTL\" \"${word#\\\"}\" ''\n"
           "((${#COMPREPLY[@]} == 0)) || printf '%s\\n' \"${COMPREPLY[@]}\"\n";
}

TEST_F(TrctlTest, CompletionOffersCommandsAndTheirOptions) {
    start();
    EXPECT_EQ(bash(completions("wa")).output, "watch\nwait\n");
    EXPECT_EQ(bash(completions("watch --p")).output, "--plot\n");
    EXPECT_EQ(bash(completions("list --par")).output, "--parameters\n");
    EXPECT_EQ(bash(completions("report --s")).output, "--seconds\n--snapshot\n");
    EXPECT_EQ(bash(completions("--color a")).output, "auto\nalways\n");
    EXPECT_EQ(bash(completions("--color=a")).output, "auto\nalways\n");
    box::writeFile("/tmp/saved.json", "{}");
    EXPECT_EQ(bash(completions("diff /tmp/sav")).output, "/tmp/saved.json\n");
}

TEST_F(TrctlTest, CompletionOffersTheRunningDaemonsAddressesLevelByLevel) {
    start();
    EXPECT_EQ(bash(completions("get ")).output, "Device.\n");
    EXPECT_EQ(bash(completions("get Device.")).output,
              "Device.DeviceInfo.\nDevice.Ethernet.\nDevice.IP.\nDevice.Services.\n");
    EXPECT_EQ(bash(completions("watch --interval 5 Device.DeviceInfo.U")).output, kUpTime + "\n");
    EXPECT_EQ(bash(completions("get \"Device.DeviceInfo.U")).output, kUpTime + "\n");
    EXPECT_EQ(bash(completions("set " + kConfig + "Sys")).output, kHost + "\n");
    EXPECT_EQ(bash(completions("set " + kHost + " Dev")).output, "");
    EXPECT_EQ(bash(completions("get Device.Nope.")).output, "");
    const std::string elsewhere = bus().address();
    for (const char* option : {"--bus ", "--bus="})
        EXPECT_EQ(bash(completions(option + elsewhere + " get Device.I",
                                   "export DBUS_SESSION_BUS_ADDRESS=unix:path=/nope\n"))
                      .output,
                  "Device.IP.\n");
}

TEST_F(TrctlTest, AnAddressCannotInjectACommand) {
    start();
    client().getWritable("Evil.$(touch /tmp/evil)`touch /tmp/evil`;touch /tmp/evil");
    const Result result = bash(completions("get Evil."));
    EXPECT_TRUE(has(result.output, "Evil.\\$\\(touch\\ /tmp/evil\\)")) << result.output;
    // Inside quotes another quoting would be needed.
    EXPECT_EQ(bash(completions("get \"Evil.")).output, "");
    EXPECT_EQ(bash("test -e /tmp/evil").status, 1);
    EXPECT_EQ(result.errors, "");
}

}  // namespace
