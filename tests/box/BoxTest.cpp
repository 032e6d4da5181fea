// The virtual box itself: what is in it, how it ends, what its stand-ins print. These tests run on
// the host and start boxes; where none can be made they are skipped with the box's own reason.

#include "tests/support/Box.h"
#include "tests/support/Child.h"
#include "tests/support/HostBoxTest.h"
#include "tests/support/TrClient.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include <signal.h>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class BoxTest : public HostBoxTest {
  protected:
    // The processes of the host with this word in their command line, zombies left aside.
    static int processesWith(const std::string& word) {
        int count = 0;
        for (const auto& entry : fs::directory_iterator("/proc")) {
            const std::string line = box::readFile(entry.path() / "cmdline");
            if (line.find(word) != std::string::npos) ++count;
        }
        return count;
    }

    // A word that no other process on the machine has in its command line.
    std::string marker() const { return "marker=" + folder(); }

    // Reports on this file descriptor's file when it has booted.
    std::vector<std::string> reportingBox(const std::string& options, const std::string& script) {
        return withoutTerminal({"sh", "-c",
                                "exec \"$0\" " + options + " --info-fd 7 -- sh -c \"$2\" 7>\"$1\"",
                                kBox, folder() + "/news", script});
    }
    // The bus's address; waits for the report. Nothing when there is none.
    std::string reportedBus() const {
        std::smatch found;
        std::string news;
        const std::regex bus("bus=(.*)\n");
        box::waitUntil([&] {
            news = box::readFile(folder() + "/news");
            return std::regex_search(news, found, bus);
        });
        return found[1];
    }

    // A box that runs until somebody ends it; a shell heeds SIGINT at once only in `wait`.
    std::vector<std::string> endlessBox(const std::string& options = "--bus") const {
        const std::string command = "sleep 1000 & wait; true " + marker();
        return withoutTerminal({kBox, options, "--", "sh", "-c", command});
    }

    void expectNothingLeft() {
        EXPECT_TRUE(box::waitUntil([this] { return processesWith(marker()) == 0; }, 5s));
    }
};

class BoxEndTest : public BoxTest, public ::testing::WithParamInterface<int> {};
class BoxFaultTest : public BoxTest {};

TEST_F(BoxTest, PassesTheExitStatusOn) {
    EXPECT_EQ(run({kBox, "--", "sh", "-c", "exit 5"}).end.code, 5);
    EXPECT_EQ(run({kBox, "--", "sh", "-c", "exit 255"}).end.code, 255);
    EXPECT_EQ(run({kBox, "--", "no-such-command"}).end.code, 127);
}

TEST_F(BoxTest, PassesASignalOnAs128PlusItsNumber) {
    EXPECT_EQ(run({kBox, "--", "sh", "-c", "kill -SEGV $$"}).end.code, 128 + SIGSEGV);
    EXPECT_EQ(run({kBox, "--", "sh", "-c", "kill -KILL $$"}).end.code, 128 + SIGKILL);
}

TEST_F(BoxTest, HandsStandardInputThrough) {
    const std::string script = "echo hello | " + kBox + " -- cat";
    EXPECT_EQ(run({"sh", "-c", script}).output, "hello\n");
    // Also in a script's background, where SIGINT is ignored at first.
    EXPECT_EQ(run({"sh", "-c", "(" + script + ") & wait"}).output, "hello\n");
}

TEST_F(BoxTest, HasTheInterfacesOfASetTopBox) {
    const std::string links = inBox("ip -o link; ip -o -4 address");
    EXPECT_TRUE(std::regex_search(links, std::regex(" eth0@.* 00:1a:2b:3c:4d:5e "))) << links;
    EXPECT_TRUE(std::regex_search(links, std::regex(" wlan0@.* 00:1a:2b:3c:4d:5f "))) << links;
    EXPECT_NE(links.find("inet 192.168.1.20/24"), std::string::npos) << links;
    EXPECT_NE(links.find("inet 192.168.2.20/24"), std::string::npos) << links;
    EXPECT_EQ(inBox("ls /proc/sys/net/ipv4/conf", {"--no-veth"}), "all\ndefault\nlo");
}

TEST_F(BoxTest, HasItsOwnProcessesAndBusyboxCommands) {
    EXPECT_EQ(inBox("[ $(ps | wc -l) -lt 8 ] && echo few"), "few");
    EXPECT_EQ(inBox("readlink -f $(which sh)"), "/usr/host/bin/busybox");
    EXPECT_EQ(inBox("readlink -f /usr/bin/uci"), "/usr/kelm-box/uci");
}

TEST_F(BoxTest, HasOurProgramsOnItsPath) {
    const std::string programs = KELM_PROGRAMS;
    EXPECT_EQ(inBox("for name in trctl await-bus kelm-trd-snapshot; do $name --help >/tmp/help && "
                    "grep -q $name /tmp/help && echo $name; done",
                    {"--env", "KELM_BUILD=" + programs, "--ro-bind", programs + ":" + programs}),
              "trctl\nawait-bus\nkelm-trd-snapshot");
}

TEST_F(BoxTest, BootsAndListsTheKernelsSettingsWithoutAComplaint) {
    EXPECT_EQ(inBox("sysctl -a 2>&1 >/dev/null", {"--bus"}), "");
}

TEST_F(BoxTest, KeepsItsFilesToItself) {
    EXPECT_EQ(inBox("cat /etc/kelm_deviceid"), " B410 ");
    EXPECT_EQ(inBox("echo 1 > /etc/kelm_deviceid; echo 2 > /sys/class/net/eth0/speed; "
                    "cat /etc/kelm_deviceid /sys/class/net/eth0/speed"),
              "1\n2");
    EXPECT_EQ(inBox("cat /etc/kelm_deviceid"), " B410 ");
    EXPECT_EQ(inBox("touch /usr/lib/x " + kBox + ".x 2>/dev/null || echo refused"), "refused");
}

TEST_F(BoxTest, ShowsAFileOfTheHostInsteadOfTheFixtures) {
    const std::string file = folder() + "/id";
    std::ofstream(file) << "C99\n";
    EXPECT_EQ(inBox("cat /etc/kelm_deviceid", {"--ro-bind", file + ":/etc/kelm_deviceid"}), "C99");
    EXPECT_EQ(inBox("echo D1 > /etc/kelm_deviceid", {"--bind", file + ":/etc/kelm_deviceid"}), "");
    EXPECT_EQ(box::readFile(file), "D1\n");
}

TEST_F(BoxTest, LetsInOnlyTheEnvironmentThatItNames) {
    const auto result =
        run({kBox, "--env", "ONE=a b", "--", "sh", "-c", "echo $ONE,$TWO,$TSAN_OPTIONS"},
            {{"TWO", "2"}, {"TSAN_OPTIONS", "x=1"}});
    EXPECT_EQ(result.output, "a b,,x=1\n");
}

TEST_F(BoxTest, ItsBusCanBeReachedFromTheHost) {
    Child box(reportingBox("--bus", "sleep 1000"), folder() + "/output");
    TrClient client(reportedBus(), "org.freedesktop.DBus");
    EXPECT_TRUE(client.connected()) << client.connectError().errorText;
    EXPECT_EQ(client.owner(), "org.freedesktop.DBus");
}

TEST_F(BoxTest, UciReadsAndStagesOptions) {
    const std::string given = "code='easycwmp.@local[0].provisioning_code'; ";
    EXPECT_EQ(inBox(given + "uci -q get $code; echo $?"), "1");
    EXPECT_EQ(inBox(given + R"(uci -q set $code='a "b" \c'; echo $?; uci -q get $code; echo $?)"),
              "0\na \"b\" \\c\n0");
    EXPECT_EQ(inBox(given + "uci set $code=x; uci changes; uci commit; uci changes; uci get $code"),
              "easycwmp.@local[0].provisioning_code='x'\nx");
    EXPECT_EQ(inBox(given + "uci set $code=x; uci set $code=; uci get $code; echo $?"),
              "uci: Entry not found\n1");
}

TEST_F(BoxTest, UciKeepsSectionsAndLists) {
    const std::string given = "list='easycwmp.@notifications[0].active'; ";
    EXPECT_EQ(inBox(given + R"(uci -q add_list $list=a; echo $?
                  uci add easycwmp notifications | wc -c; uci add_list $list=a
                  uci add_list $list="it's"; uci changes; uci get $list)"),
              "1\n10\neasycwmp.@notifications[0]='notifications'\n"
              "easycwmp.@notifications[0].active='a' 'it'\\''s'\na it's");
    EXPECT_EQ(inBox(given + R"(uci add easycwmp notifications >/dev/null; uci add_list $list=a
                  uci add_list $list=b; uci commit; uci del_list $list=a
                  uci show easycwmp | grep notif; uci revert easycwmp; uci get $list
                  uci delete easycwmp.@notifications[0]; uci -q get $list; echo $?)"),
              "easycwmp.@notifications[0]=notifications\n"
              "easycwmp.@notifications[0].active='b'\na b\n1");
}

TEST_F(BoxTest, UciShowsAPackageWithItsQuotes) {
    EXPECT_EQ(
        inBox("uci set easycwmp.@acs[0].url=\"it's \n two \"; uci show easycwmp | grep -A1 url; "
              "uci show nope; echo $?"),
        "easycwmp.@acs[0].url='it'\\''s \n two '\nuci: Entry not found\n1");
}

TEST_F(BoxTest, UbusQueuesCallsOfABusyClient) {
    EXPECT_EQ(inBox("mkdir /run/kelm-box/ubus; ubus -t 1 call tr069 notify; echo $?; touch "
                    "/run/kelm-box/ubus/busy; "
                    "ubus -t 1 call tr069 notify; echo $?; wc -l </run/kelm-box/ubus/queue"),
              "0\n249\n2");
}

TEST_F(BoxTest, UciRefusesUnknownSectionsAndPackages) {
    EXPECT_EQ(inBox("uci -q set easycwmp.@local[1].a=1; echo $?; uci -q get easycwmp.@local[1].a; "
                    "echo $?"),
              "1\n1");
    EXPECT_EQ(inBox("uci -q set other.@local[0].a=1; echo $?; uci -q changes"), "1");
    EXPECT_EQ(inBox("uci -q set easycwmp.@local[0].../../x=1; echo $?"), "1");
}

TEST_F(BoxTest, StandInsLogTheirCalls) {
    EXPECT_EQ(inBox("/usr/bin/uci -q get a.b.c; ubus -t 1 call tr069 notify; ps >/dev/null; "
                    "cat /run/kelm-box/log/uci /run/kelm-box/log/ubus /run/kelm-box/log/ps"),
              "uci -q get a.b.c\nubus -t 1 call tr069 notify\nps");
}

TEST_F(BoxTest, LogLinesOfCallsAtTheSameTimeDoNotMix) {
    EXPECT_EQ(inBox("long=$(printf %06000d 0); for i in 1 2 3 4 5 6; do for j in 1 2 3 4 5; do "
                    "ubus $long; done & done; wait; sort /run/kelm-box/log/ubus | uniq | wc -l; "
                    "wc -l < /run/kelm-box/log/ubus"),
              "1\n30");
}

TEST_F(BoxTest, IwPrintsTheLinkOfTheFixture) {
    EXPECT_NE(inBox("iw wlan0 link").find("\n\tsignal: -45 dBm\n"), std::string::npos);
    EXPECT_EQ(inBox("rm /run/kelm-box/iw/wlan0; iw wlan0 link"), "Not connected.");
    EXPECT_EQ(inBox("iw wlan9 link 2>/dev/null; echo $?"), "237");
}

TEST_F(BoxFaultTest, CommandsFailAsConfigured) {
    const auto withFault = [this](const std::string& fault, const std::string& script) {
        return inBox("echo " + fault + " > /run/kelm-box/fault/iw; " + script);
    };
    EXPECT_EQ(withFault("exit 3", "iw wlan0 link; echo $?"), "3");
    EXPECT_EQ(withFault("silent", "iw wlan0 link; echo $?"), "0");
    EXPECT_EQ(withFault("flood", "iw wlan0 link | wc -c"), "10485760");
    EXPECT_EQ(withFault("line", "iw wlan0 link | wc -c -l | xargs"), "0 10485760");
    EXPECT_EQ(withFault("noeol", "iw wlan0 link | wc -l"), "11");
    EXPECT_EQ(withFault("garbage", "iw wlan0 link | tr -dc '\\000' | wc -c"), "3");
    EXPECT_EQ(withFault("hang", "{ timeout -s KILL 0.3 iw wlan0 link; echo $?; } 2>/dev/null"),
              "137");
    EXPECT_EQ(withFault("nonsense", "iw wlan0 link 2>/dev/null; echo $?"), "99");
}

TEST_F(BoxFaultTest, PipesAndCommandsEndSeparately) {
    // Ends only when it has found the sleeper, which is to outlive what is before it.
    const std::string wake = "until killall sleep; do sleep 0.1; done; ";
    const auto withFault = [this](const std::string& fault, const std::string& script) {
        return inBox("exec 2>/dev/null; echo " + fault + " 77 > /run/kelm-box/fault/ubus; " +
                     script);
    };
    EXPECT_EQ(withFault("closeearly", "ubus | { cat; " + wake + "echo woken; }"), "woken");
    EXPECT_EQ(withFault("background", "ubus >/dev/null; " + wake + "echo woken"), "woken");
    // A pipe that is held open: its reader ends when the sleeper does.
    EXPECT_EQ(
        withFault("background", "ubus | { cat; ps | grep -c '[s]leep 77'; } & " + wake + "wait"),
        "0");
    EXPECT_EQ(withFault("slow", "ubus & " + wake + "wait; cat /run/kelm-box/log/ubus"), "ubus");
}

TEST_F(BoxTest, AForeignTestProgramRunsThroughItsEmulator) {
    EXPECT_EQ(run({kTestInBox, "echo", "emulator", "--", "/bin/program", "-a"}).output,
              "emulator /bin/program -a\n");
}

TEST_P(BoxEndTest, LeavesNothingBehind) {
    Child box(endlessBox(), folder() + "/output");
    ASSERT_TRUE(box::waitUntil([this] { return processesWith(marker()) >= 4; }));
    box.send(GetParam());
    ASSERT_TRUE(box.waitForEnd().has_value());
    expectNothingLeft();
}
INSTANTIATE_TEST_SUITE_P(Signals, BoxEndTest, ::testing::Values(SIGINT, SIGTERM, SIGHUP, SIGKILL));

TEST_F(BoxTest, LeavesNothingBehindWhenCutShortInTheBoot) {
    for (const auto delay : {5ms, 15ms, 25ms, 35ms, 45ms, 60ms}) {
        for (const int signal : {SIGINT, SIGKILL}) {
            Child box(endlessBox("--no-veth"), folder() + "/output");
            std::this_thread::sleep_for(delay);
            box.send(signal);
            ASSERT_TRUE(box.waitForEnd().has_value()) << delay.count();
            expectNothingLeft();
        }
    }
}

TEST_F(BoxTest, DiesWithItsParent) {
    const std::string script = R"("$@" & wait)";
    std::vector<std::string> command = endlessBox();
    command.insert(command.begin(), {"sh", "-c", script, "sh"});
    Child starter(command, folder() + "/output");
    ASSERT_TRUE(box::waitUntil([this] { return processesWith(marker()) >= 5; }));
    starter.send(SIGKILL);
    ASSERT_TRUE(starter.waitForEnd().has_value());
    expectNothingLeft();
}

// As a terminal does it without being the box's standard input: the whole process group gets it.
TEST_F(BoxTest, SigintReachesTheCommandOnce) {
    const std::string script =
        "trap 'count=x$count' INT; echo ready; "
        "for i in 1 2 3 4 5 6 7 8 9 10; do sleep 0.1; done; echo $count; exit 4";
    const std::string output = folder() + "/output";
    std::vector<std::string> command = reportingBox("", script);
    command.insert(command.begin(), "setsid");
    Child box(command, output);
    // Until it has reported the command's process, a signal ends the boot instead of being passed
    // on.
    reportedBus();
    ASSERT_TRUE(box::waitUntil([&] { return box::readFile(output) == "ready\n"; }));
    kill(-box.pid(), SIGINT);
    EXPECT_EQ(box.waitForEnd(), (ExitStatus{4, 0}));
    EXPECT_EQ(box::readFile(output), "ready\nx\n");
}

// These need no box.
class BoxRefusalTest : public HostBoxTest {
  protected:
    void SetUp() override {}

    // With a PATH that has everything that the script needs, and bwrap as the test wants it.
    void expectOutput(const std::vector<std::string>& command, const std::string& output,
                      int status = 0, const std::string& bwrap = "") {
        const fs::path tools = fs::path(folder()) / "tools";
        fs::remove_all(tools);
        fs::create_directory(tools);
        for (const char* tool : {"bash", "dirname", "env", "busybox", "ip", "setpriv", "realpath",
                                 "readlink", "sh", "cat"})
            fs::create_symlink(fs::path("/usr/bin") / tool, tools / tool);
        if (!bwrap.empty()) {
            box::writeFile(tools / "bwrap", "#!/bin/sh\n" + bwrap + "\n");
            fs::permissions(tools / "bwrap", fs::perms::owner_all);
        }
        const Result result = run(command, {{"PATH", tools}});
        EXPECT_EQ(result.output, output);
        EXPECT_EQ(result.end.code, status);
    }
};

TEST_F(BoxRefusalTest, PrintsInOneLineWhyNoBoxCanBeMade) {
    expectOutput({kBox, "--", "true"}, "box: no virtual box here: bwrap is not installed\n",
                 kRefused);
    expectOutput({kBox, "--", "true"}, "box: no virtual box here: bwrap: No permissions\n",
                 kRefused, "echo 'bwrap: No permissions' >&2; exit 1");
}

TEST_F(BoxRefusalTest, ATestIsReportedAsSkippedAndListedAllTheSame) {
    const std::string list = "--gtest_list_tests";
    expectOutput({kTestInBox, "/bin/true"},
                 "[  SKIPPED ] the virtual box: bwrap is not installed\n");
    expectOutput({kTestInBox, "/bin/echo", list}, "--gtest_list_tests\n");
    expectOutput({kTestInBox, "/bin/echo", "emulator", "--", "/bin/program", list},
                 "emulator /bin/program --gtest_list_tests\n");
}

TEST_F(BoxRefusalTest, AWrongCallIsNotARefusal) {
    EXPECT_EQ(run({kBox, "--nonsense", "--", "true"}).end.code, 2);
    EXPECT_EQ(run({kBox}).end.code, 2);
    EXPECT_EQ(run({kBox, "--help"}).end.code, 0);
}

}  // namespace
