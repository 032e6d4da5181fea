// kelm-trd-snapshot itself: what it takes, what it leaves alone, how it fails.

#include "tests/box/SnapshotTest.h"

#include "tests/support/Box.h"

#include <filesystem>
#include <sstream>

#include <signal.h>

namespace fs = std::filesystem;

std::vector<std::string> SnapshotTest::options(const std::vector<std::string>& more) const {
    const std::string programs = KELM_PROGRAMS;
    std::vector<std::string> all{"--bus",
                                 "--bind",
                                 folder() + ":" + folder(),
                                 "--ro-bind",
                                 programs + ":" + programs,
                                 "--env",
                                 "OUT=" + folder(),
                                 "--env",
                                 "PROGRAMS=" + programs,
                                 "--env",
                                 "SNAPSHOT=" KELM_SNAPSHOT_PROGRAM};
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

std::string SnapshotTest::collector(const std::string& arguments) {
    return "\n\"$SNAPSHOT\" --timeout 60 " + arguments + " -o \"$OUT/box.tar.gz\"";
}

std::string SnapshotTest::take(const std::string& script, const std::string& arguments) {
    const Result result = runInBox(script + collector(arguments), options());
    EXPECT_EQ(result.end, ExitStatus{}) << result.output;
    unpack();
    return result.output;
}

void SnapshotTest::unpack() {
    const std::string script = R"(rm -rf "$0" && mkdir "$0" && tar -xzf "$1" -C "$0")";
    run({"sh", "-c", script, folder() + "/unpacked", archive()});
}

HostBoxTest::Result SnapshotTest::replay(const std::string& script, const std::string& snapshot) {
    return runInBox(script, options({"--snapshot", snapshot}));
}

std::string SnapshotTest::file(const std::string& path) const {
    return box::readFile(unpacked() + "/" + path);
}

std::string SnapshotTest::indexLine(const std::string& name) const {
    std::istringstream index(file("index"));
    for (std::string line; std::getline(index, line);) {
        std::istringstream words(line);
        std::string kind, state, when, size, number, what;
        words >> kind >> state >> when >> size >> number >> std::ws;
        std::getline(words, what);
        if (what == name) return kind + " " + state + " " + size + " " + number;
    }
    return {};
}

std::vector<std::string> SnapshotTest::filesWith(const std::string& bytes) const {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(unpacked())) {
        if (!entry.is_regular_file()) continue;
        if (box::readFile(entry.path()).find(bytes) != std::string::npos)
            found.push_back(entry.path());
    }
    return found;
}

namespace {

using namespace std::chrono_literals;

class SnapshotEndTest : public SnapshotTest, public ::testing::WithParamInterface<int> {};

// Every file and setting of the box that could be changed.
const std::string kState = R"(
    state() {
        find /etc/kelm* /var /sys /tmp /run/kelm-box/uci -xdev -not -path "$OUT*" -not -path /tmp -exec ls -ld --full-time {} + | sort
        ip -o link; ip -o -4 address
    }
)";

TEST_F(SnapshotTest, TakesFilesAndCommandsWithTheirTimesAndStatuses) {
    const std::string output = take(
        "touch -d '2020-02-02 02:02:02' /etc/kelm_deviceid; echo 'exit 3' >/run/kelm-box/fault/iw");
    EXPECT_EQ(file("files/etc/kelm_deviceid"), " B410 \n");
    EXPECT_EQ(indexLine("/etc/kelm_deviceid"), "file ok 7 1580608922");
    expectState("iw wlan0 link", "command failed 3");
    expectState("chipid_tool hwrev", "command ok 0");
    const std::string call = indexLine("chipid_tool hwrev").substr(13);
    EXPECT_EQ(file("commands/" + call + "/output"), "29\n");
    EXPECT_NE(file("files/proc/meminfo").find("MemFree:"), std::string::npos);
    EXPECT_EQ(file("files/tmp/syslog.0").substr(0, 15), "Jan  1 00:00:03");
    EXPECT_EQ(file("about").substr(0, 9), "format 1\n");
    EXPECT_NE(output.find("failed"), 0U);
    EXPECT_NE(output.find("ended with a status: iw wlan0 link (3)"), std::string::npos) << output;
}

TEST_F(SnapshotTest, ChangesNothingOnTheBoxAndAsksHarmlessQuestionsOnly) {
    const std::string script = kState + R"(state >"$OUT/before"
        "$SNAPSHOT" -o "$OUT/a" || exit; state >"$OUT/after"
        cd /run/kelm-box/log; cat *)";
    const Result result = runInBox(script, options());
    ASSERT_EQ(result.end, ExitStatus{}) << result.output;
    EXPECT_EQ(box::readFile(folder() + "/before"), box::readFile(folder() + "/after"));
    const std::string calls = result.output.substr(result.output.find("chipid_tool\n"));
    EXPECT_EQ(
        calls,
        "chipid_tool\nchipid_tool hwrev\nchipid_tool pertype\niw wlan0 link\nnetstat -aun\nps\n"
        "sysctl -a\nubus list\nuci -q get easycwmp.@local[0]\n"
        "uci -q get easycwmp.@local[0].provisioning_code\n");
}

TEST_F(SnapshotTest, AnythingButAFileIsNotedAndNeverWaitedFor) {
    const std::string output = take(
        "cd /var/kelm; rm TZ update_type syslog_host; mkfifo update_type; mkdir syslog_host; "
        "ln -s /dev/zero /tmp/syslog.7; ln -s nowhere TZ; : >'odd name'; rm /usr/bin/chipid_tool");
    expectState("/var/kelm/update_type", "file fifo");
    expectState("/var/kelm/syslog_host", "file folder");
    expectState("/tmp/syslog.7", "file device");
    expectState("/var/kelm/TZ", "file missing");
    expectState("/var/kelm/odd?name", "file name");
    expectState("chipid_tool hwrev", "command missing 127");
    EXPECT_NE(output.find("no files: /var/kelm/update_type, /var/kelm/syslog_host"),
              std::string::npos)
        << output;
}

TEST_F(SnapshotTest, ACommandThatHangsIsCutOff) {
    const std::string output = take("echo hang >/run/kelm-box/fault/netstat", "--timeout 1");
    expectState("netstat -aun", "command cut-off");
    expectState("sysctl -a", "command failed");
    EXPECT_NE(output.find("cut off after 1 s: netstat -aun"), std::string::npos);
}

TEST_F(SnapshotTest, ALargeFileIsCutToWholeLinesAndALogKeepsItsNewest) {
    take("echo flood >/run/kelm-box/fault/iw; seq 100000 | sed 's/^/line /' >/tmp/syslog",
         "--file-limit 100");
    expectState("/tmp/syslog", "file truncated");
    expectState("iw wlan0 link", "command truncated");
    const std::string log = file("files/tmp/syslog");
    EXPECT_LE(log.size(), 102400U);
    EXPECT_GT(log.size(), 102300U);
    EXPECT_EQ(log.substr(0, 5), "line ");
    EXPECT_EQ(log.substr(log.size() - 12), "line 100000\n");
}

TEST_F(SnapshotTest, TheWholeArchiveIsLimited) {
    const std::string output =
        take("seq 100000 >/tmp/syslog; seq 9999 >/tmp/syslog.0", "--total-limit 200");
    expectState("/etc/kelm_deviceid", "file ok");
    expectState("/tmp/syslog", "file truncated");
    expectState("/tmp/syslog.0", "file left-out");
    expectState("chipid_tool", "command left-out");
    EXPECT_NE(output.find("left out: /tmp/syslog.0, chipid_tool"), std::string::npos) << output;
}

TEST_F(SnapshotTest, TheDaemonsZoneAndVersionAreTaken) {
    const std::string output = take(
        "cp /usr/host/bin/sleep /tmp/kelm-trd; printf '\\0kelm-trd 9.8.7\\0' >>/tmp/kelm-trd; "
        "TZ=KLM-3 SECRET_TOKEN=none /tmp/kelm-trd 1000 &");
    EXPECT_NE(file("environment").find("TZ=KLM-3\n"), std::string::npos) << file("environment");
    EXPECT_EQ(file("environment").find("SECRET"), std::string::npos);
    EXPECT_NE(file("about").find("\ndaemon 9.8.7\n"), std::string::npos) << file("about");
    EXPECT_EQ(replay("date +%z").output, "+0300\n");
}

TEST_F(SnapshotTest, AFullDiskIsAClearError) {
    const std::string script = R"(mkdir /tmp/small; mount -t tmpfs -o size=$1 none /tmp/small
        TMPDIR=$2 "$SNAPSHOT" -o /tmp/small/a.tar.gz; echo "status $?"; ls -A /tmp/small)";
    const auto withDisk = [&](const std::string& arguments) {
        return runInBox("set -- " + arguments + "\n" + script, options()).output;
    };
    EXPECT_EQ(withDisk("40k /tmp/small"),
              "kelm-trd-snapshot: cannot write to /tmp/small: is it full?\nstatus 1\n");
    const std::string output = withDisk("8k /tmp");
    EXPECT_EQ(output.find("kelm-trd-snapshot: cannot write /tmp/small/a.tar.gz: "), 0U) << output;
    EXPECT_NE(output.find("\nstatus 1\n"), std::string::npos) << output;
    EXPECT_EQ(output.find("a.tar.gz", 80), std::string::npos) << output;
}

TEST_F(SnapshotTest, AnArchiveCanGoToStandardOutput) {
    const Result result =
        runInBox("\"$SNAPSHOT\" -o - 2>/dev/null | tar -tzf - | head -n 1", options());
    EXPECT_EQ(result.output, "kelm-trd-snapshot/\n");
}

TEST_F(SnapshotTest, AWrongCallExitsWith2) {
    const std::string script = R"sh(call() { "$SNAPSHOT" "$@" >/dev/null 2>&1; echo $?; }
        before=$(ls -A /tmp)
        call --nonsense; call -o; call -o /tmp; call --timeout 0; call --file-limit x
        call --uci 'a;b'; call extra; call --help; [ "$(ls -A /tmp)" = "$before" ] || ls -A /tmp)sh";
    EXPECT_EQ(runInBox(script, options()).output, "2\n2\n2\n2\n2\n2\n2\n0\n");
}

TEST_P(SnapshotEndTest, LeavesNothingBehind) {
    const std::string script = R"(ls -A /tmp >"$OUT/before"; echo hang >/run/kelm-box/fault/iw
        /usr/host/bin/env --default-signal=INT "$SNAPSHOT" -o /tmp/a.tar.gz & pid=$!
        until [ -s /run/kelm-box/log/iw ]; do sleep 0.05; done
        kill -$SIGNAL $pid; wait $pid; echo "status $?"
        ls -A /tmp | cmp - "$OUT/before"
        i=0; while ps | grep -q '[s]leep 1000000' && [ $i -lt 100 ]; do sleep 0.1; i=$((i + 1)); done
        ps | grep '[s]leep 1000000')";
    const std::string signal = std::to_string(GetParam());
    const Result result = runInBox(script, options({"--env", "SIGNAL=" + signal}));
    EXPECT_EQ(result.output, "status " + std::to_string(128 + GetParam()) + "\n");
}
INSTANTIATE_TEST_SUITE_P(Signals, SnapshotEndTest, ::testing::Values(SIGHUP, SIGINT, SIGTERM));

}  // namespace
