// A box that is booted from a snapshot: it behaves as the box that the snapshot was taken on, and
// no archive escapes from it.

#include "tests/box/SnapshotTest.h"
#include "tests/support/Box.h"
#include "tests/support/TreeListing.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

namespace {

namespace fs = std::filesystem;

// A box that differs from the fixture in all that the daemon reads. Bash, as busybox has no
// /dev/udp: a socket that sends to a group makes its row in netstat appear.
const std::string kAnotherBox = R"(
    rm /var/kelm/TZ /etc/kelm_firmware.version; echo C99 >/etc/kelm_deviceid
    printf 'wifi_ssid=Other\nwifi_wpa_passphrase=quite a secret\n' >/var/kelm/network.wlan0
    echo 'http://other.example.net' >/var/kelm/update_server.tr69
    uci set 'easycwmp.@local[0].provisioning_code=Area 51'; uci commit
    echo 'exit 3' >/run/kelm-box/fault/chipid_tool
    echo 'another line' >>/tmp/syslog; seq 3 >/tmp/syslog.2
    sed -i 's/-45/-71/' /run/kelm-box/iw/wlan0
    echo 51500 >/sys/class/thermal/thermal_zone0/temp
    ip link set dev eth0 down; ip link set dev eth0 address 00:1a:2b:77:88:99 mtu 1400; ip link set dev eth0 up
    ip address flush dev eth0; ip address add 10.9.8.7/16 dev eth0; ip address add 10.9.8.8/16 dev eth0
    ip link set dev peer-wlan0 down; echo lowerlayerdown >/sys/class/net/wlan0/operstate
    ip link add eth1 address 00:1a:2b:00:00:01 type veth peer name peer-eth1
    cp -r /sys/class/net/eth0 /sys/class/net/eth1; echo down >/sys/class/net/eth1/operstate
    echo 1000 >/sys/class/net/eth0/speed; rm /sys/class/net/eth1/speed
)";

// The listing goes to $OUT/NAME. SIGINT is given back, as background programs find it ignored.
std::string listTree(const std::string& name) {
    return R"(ln -s "$PROGRAMS/trctl" /usr/bin/
        /usr/host/bin/env --default-signal=INT "$PROGRAMS/kelm-trd" </dev/null >/tmp/daemon-output 2>&1 &
        daemon=$!
        trctl wait && trctl list --long >"$OUT/)" +
           name + R"(" || { cat /tmp/daemon-output; exit 1; }
    )";
}
const std::string kStop = R"(
    kill -INT $daemon; wait $daemon || { cat /tmp/daemon-output; exit 1; })";

const std::string kDiff = R"(
    trctl diff "$OUT/unpacked/kelm-trd-snapshot/tree.json" >"$OUT/diff"; [ $? = 1 ] || exit)";

// What moves by itself, and so lives on in another box; all else is the same to the letter.
constexpr const char* kLive[] = {
    "DeviceInfo.UpTime",       ".MemoryStatus.Free", ".LastChange",
    ".ProcessNumberOfEntries", ".Total.ResetTime",   "ClientGroup.1.UpTime",
};

bool isLive(const std::string& address) {
    const auto isItsEnd = [&](const std::string& end) {
        return address.size() >= end.size() &&
               address.compare(address.size() - end.size(), end.size(), end) == 0;
    };
    return std::any_of(std::begin(kLive), std::end(kLive), isItsEnd) ||
           address.find(".Stats.") != std::string::npos;
}

std::string withShapes(const std::string& listing) {
    std::string text;
    std::istringstream stream(listing);
    for (std::string line; std::getline(stream, line);) {
        std::istringstream words(line);
        std::string address, flags, type;
        words >> address >> flags >> type;
        if (type != "object" && isLive(address))
            line = address + " " + flags + " " + type + " ~[0-9.]+";
        text += line + "\n";
    }
    return text;
}

class ReplayTest : public SnapshotTest {
  protected:
    // With the daemon, whose own listing goes to the file "box"; then runs the script in a replay,
    // with the daemon there, whose listing goes to the file "replayed".
    void takeAndReplayAnotherBox(const std::string& arguments, const std::string& script) {
        box::writeFile(folder() + "/script", "exec 3<>/dev/udp/239.255.0.1/1234" + kAnotherBox +
                                                 listTree("box") + collector(arguments) +
                                                 " || exit" + kStop);
        const Result taken = runInBox("exec bash \"$OUT/script\"", options());
        ASSERT_EQ(taken.end, ExitStatus{}) << taken.output;
        unpack();
        const Result replayed = replay(listTree("replayed") + script + kStop);
        ASSERT_EQ(replayed.end, ExitStatus{}) << replayed.output;
    }
    std::string listing(const std::string& name) const {
        return box::readFile(folder() + "/" + name);
    }
};

TEST_F(ReplayTest, TheDaemonPublishesWhatItPublishedOnTheBox) {
    ASSERT_NO_FATAL_FAILURE(takeAndReplayAnotherBox("--with-secrets", kDiff));
    const std::string published = listing("box");
    EXPECT_EQ(TreeListing::differences(withShapes(published), listing("replayed")), "");
    // The box was another one indeed.
    for (const char* const value : {" 10.9.8.7\n", " Area 51\n", " quite a secret\n", " 51500\n",
                                    " KELM Orbit C99\n", " 239.255.0.1\n", " eth1\n", " -71\n"})
        EXPECT_NE(published.find(value), std::string::npos) << value << published;
    // The tree in the archive is the one that the daemon served: both sides have a line, of live
    // values only.
    std::istringstream diff(listing("diff"));
    std::string saved, now, address;
    while (std::getline(diff, saved) && std::getline(diff, now)) {
        address = saved.substr(2, saved.find(" = ") - 2);
        EXPECT_TRUE(isLive(address)) << saved;
        EXPECT_EQ(now.substr(0, address.size() + 2), "+ " + address);
    }
    EXPECT_FALSE(address.empty()) << "the file has no live value";
}

TEST_F(ReplayTest, AMaskedArchiveChangesOnlyThePassphrase) {
    ASSERT_NO_FATAL_FAILURE(takeAndReplayAnotherBox("", ""));
    std::string expected = withShapes(listing("box"));
    const std::string secret = "quite a secret";
    expected.replace(expected.find(secret), secret.size(), "********");
    EXPECT_EQ(TreeListing::differences(expected, listing("replayed")), "");
}

TEST_F(ReplayTest, FilesAndClocksComeFromTheBoxNotTheFixture) {
    const std::string files =
        R"(find /etc/kelm_* /var/kelm /sys /tmp -xdev -type f -not -path "$OUT/*" -exec md5sum {} + \
        -exec stat -c '%Y %n' {} + | sort)";
    take(
        "rm -r /var/kelm/* /etc/kelm_deviceid /tmp/syslog.0 /sys/class/tsdemux; "
        "mkfifo /var/kelm/TZ\n" +
        files + " >\"$OUT/files\"");
    EXPECT_EQ(replay(files).output, listing("files"));
    EXPECT_EQ(replay("cat /proc/uptime /proc/meminfo").output,
              file("files/proc/uptime") + file("files/proc/meminfo"));
    EXPECT_EQ(replay("[ -p /var/kelm/TZ ] && cat /run/kelm-box/iw/wlan0 2>&1").output,
              "cat: can't open '/run/kelm-box/iw/wlan0': No such file or directory\n");
}

TEST_F(ReplayTest, CommandsAnswerAsTheyDidAndNothingElse) {
    take(
        "rm /usr/bin/chipid_tool; echo 'exit 4' >/run/kelm-box/fault/iw; "
        "echo 'exit 255' >/run/kelm-box/fault/uci");
    const Result result = replay(
        "chipid_tool hwrev; echo $?; iw wlan0 link; echo $?; iw wlan7 link; echo $?; "
        "uci -q get 'easycwmp.@local[0].provisioning_code'; echo $?; ubus -t 1 call tr069 notify; "
        "echo $?");
    EXPECT_EQ(result.output,
              "sh: chipid_tool: not found\n127\n4\n"
              "iw: the snapshot does not have the answer to this call\n1\n255\n0\n");
}

TEST_F(ReplayTest, SettingsCanBeWrittenThere) {
    take("true");
    const Result result = replay(
        "code='easycwmp.@local[0].provisioning_code'; uci -q get $code; echo $?; "
        "uci -q set $code=X; uci -q get $code; uci changes");
    EXPECT_EQ(result.output, "1\nX\neasycwmp.@local[0].provisioning_code='X'\n");
}

TEST_F(ReplayTest, AcceptsAnUnpackedArchiveAndASnapshotOfAReplay) {
    take("echo C77 >/etc/kelm_deviceid");
    const std::string script =
        "cat /etc/kelm_deviceid; ip -o -4 address show dev eth0 | grep -o '192[^ ]*'; "
        "\"$SNAPSHOT\" -o \"$OUT/again.tar.gz\" 2>/dev/null";
    for (const std::string& snapshot :
         {unpacked(), folder() + "/unpacked", folder() + "/again.tar.gz"})
        EXPECT_EQ(replay(script, snapshot).output, "C77\n192.168.1.20/24\n192.168.1.255\n")
            << snapshot;
}

struct Hostile {
    const char* name;
    const char* script;   // makes evil.tar.gz of the good folder kelm-trd-snapshot, as it likes
    const char* message;  // the beginning of what box/box prints
};

std::ostream& operator<<(std::ostream& stream, const Hostile& row) {
    return stream << row.name;
}

class HostileArchiveTest : public SnapshotTest, public ::testing::WithParamInterface<Hostile> {};

TEST_P(HostileArchiveTest, IsRefusedAndNothingIsWritten) {
    const std::string prepare = R"(cd "$OUT" && mkdir -p good/kelm-trd-snapshot/files/etc && cd good
        echo 'format 1' >kelm-trd-snapshot/about; echo X9 >kelm-trd-snapshot/files/etc/kelm_deviceid
        echo 'file ok now 3 0 /etc/kelm_deviceid' >kelm-trd-snapshot/index; echo bad >../escaped.source
        pack() { tar -czPf ../evil.tar.gz "$@"; }
        )";
    const Result made = run({"sh", "-ec", prepare + GetParam().script}, {{"OUT", folder()}});
    ASSERT_EQ(made.end, ExitStatus{}) << made.output;
    const Result result = runInBox(
        "touch \"$OUT/ran\"", options({"--snapshot", folder() + "/evil.tar.gz", "--gtest-skip"}));
    EXPECT_EQ(result.end.code, 1);
    EXPECT_EQ(result.output.find("box: snapshot: " + std::string(GetParam().message)), 0U)
        << result.output;
    EXPECT_FALSE(fs::exists(folder() + "/ran"));
    EXPECT_FALSE(fs::exists(folder() + "/escaped"));
}

constexpr char kUntrusted[] = "the archive cannot be trusted: ";
constexpr Hostile kHostile[] = {
    {"LeadsOut", R"(pack kelm-trd-snapshot ../escaped.source \
        --transform "s,.*escaped.source,kelm-trd-snapshot/../../../../../../../../../..$OUT/escaped,")",
     kUntrusted},
    {"AbsolutePath",
     R"(pack kelm-trd-snapshot ../escaped.source --transform "s,.*escaped.source,$OUT/escaped,")",
     kUntrusted},
    {"SymbolicLink", "ln -s / kelm-trd-snapshot/files/var; pack kelm-trd-snapshot", kUntrusted},
    {"FileBehindALink",
     R"(ln -s "$OUT" kelm-trd-snapshot/to; pack kelm-trd-snapshot ../escaped.source \
        --transform 's,.*escaped.source,kelm-trd-snapshot/to/escaped,')",
     kUntrusted},
    {"HardLink", "ln kelm-trd-snapshot/about kelm-trd-snapshot/other; pack kelm-trd-snapshot",
     kUntrusted},
    {"Fifo", "mkfifo kelm-trd-snapshot/files/etc/kelm_x; pack kelm-trd-snapshot", kUntrusted},
    {"Device", "pack kelm-trd-snapshot /dev/zero --transform 's,.*zero,kelm-trd-snapshot/zero,'",
     kUntrusted},
    {"LineFeedInAName",
     "touch 'kelm-trd-snapshot/a\n/b' || touch 'kelm-trd-snapshot/a\nb'; pack kelm-trd-snapshot",
     kUntrusted},
    {"BlankInAName", "touch 'kelm-trd-snapshot/a b'; pack kelm-trd-snapshot", kUntrusted},
    {"SomethingBesides", "mkdir other; pack kelm-trd-snapshot other", kUntrusted},
    {"Crowded",
     "mkdir kelm-trd-snapshot/x; (cd kelm-trd-snapshot/x; seq 11000 | xargs touch); pack "
     "kelm-trd-snapshot",
     "it cannot be trusted: it holds more than 10000 files"},
    {"Huge", "truncate -s 80M kelm-trd-snapshot/zeros; pack kelm-trd-snapshot",
     "unpacked it would be larger than 64 MiB"},
    {"NoArchive", "echo nonsense >../evil.tar.gz", "it is damaged, or not packed with gzip"},
    {"NoTar", "echo nonsense | gzip >../evil.tar.gz", "it is damaged, or no archive of tar"},
    {"CutShort", R"(head -c 200000 /dev/urandom >kelm-trd-snapshot/noise; pack kelm-trd-snapshot
        truncate -s 100000 ../evil.tar.gz)",
     "it is damaged, or not packed with gzip"},
    {"Empty", "pack -T /dev/null", "it is not from kelm-trd-snapshot"},
    {"AnotherFormat", "echo 'format 2' >kelm-trd-snapshot/about; pack kelm-trd-snapshot",
     "its format 2 is not known here"},
    {"EscapesInItsFormat",
     R"(printf 'format \033[31m2\n' >kelm-trd-snapshot/about; pack kelm-trd-snapshot)",
     "its format ?[31m2 is not known here"},
    {"OddInterface", R"(mkdir -p kelm-trd-snapshot/commands/1; cd kelm-trd-snapshot/commands/1
        echo 'ip -o link show' >call; echo 0 >status; cd ../../..
        echo '2: eth0: <UP> mtu 1500 link/ether 01:00:00:00:00:01 brd' >kelm-trd-snapshot/commands/1/output
        pack kelm-trd-snapshot)",
     "its interfaces cannot be made: "},
};
INSTANTIATE_TEST_SUITE_P(Archives, HostileArchiveTest, ::testing::ValuesIn(kHostile),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(ReplayTest, MalformedLinesOfAnArchiveAreIgnored) {
    const std::string script =
        R"(cd "$OUT" && mkdir -p box/files/etc box/files/var box/commands/1 box/commands/2 box/commands/3
        cd box; echo 'format 1' >about; echo root::0 >files/etc/passwd; echo x >files/etc/kelm_deviceid
        printf 'file ok t 1 1 %s\n' /etc/passwd /var/kelm/../../etc/hosts /etc/kelm_deviceid >index
        printf 'file fifo t 1 1 %s\nnonsense\n\n' /usr/bin/x /var/kelm/../../x /etc/kelm_../../x >>index
        echo '../../../evil -a' >commands/1/call; echo 'uci -q get a.b.../../c' >commands/2/call
        for i in 1 2 3; do echo 0 >commands/$i/status; echo x >commands/$i/output; done
        echo 'ip -o link show' >commands/3/call
        echo '2: eth0;x: <UP> mtu 1500 link/ether 00:00:00:00:00:01' >commands/3/output)";
    ASSERT_EQ(run({"sh", "-ec", script}, {{"OUT", folder()}}).end, ExitStatus{});
    const Result result = replay(
        "cat /etc/kelm_deviceid; grep -c nobody /etc/passwd; ls /sys/class /evil /x 2>/dev/null; "
        "ls /run/kelm-box/replay; ip -o link | wc -l",
        folder() + "/box");
    EXPECT_EQ(result.output, "x\n1\nip\nuci\n1\n");
}

TEST_F(ReplayTest, ABoxWithoutTheIpCommandHasItsInterfacesFromIfconfig) {
    take(R"(ip address flush dev wlan0; ip link set dev wlan0 mtu 1300
        ip link set dev peer-eth0 down
        rm /usr/bin/ip; printf '#!/bin/sh\nexit 1\n' >/usr/bin/ip; chmod +x /usr/bin/ip)");
    const std::string output =
        replay("ip -o link; ip -o -4 address; ip -o link show dev eth0 | grep -c NO-CARRIER")
            .output;
    EXPECT_NE(output.find("00:1a:2b:3c:4d:5e"), std::string::npos) << output;
    EXPECT_NE(output.find("192.168.1.20/24"), std::string::npos) << output;
    EXPECT_NE(output.find(" mtu 1300 "), std::string::npos) << output;
    EXPECT_EQ(output.find("192.168.2.20"), std::string::npos) << output;
    EXPECT_EQ(output.substr(output.size() - 3), "\n1\n") << output;
}

TEST_F(ReplayTest, AFolderWithALinkIsRefused) {
    take("true");
    fs::create_symlink("/etc", unpacked() + "/files/sys/link");
    const Result result = run({kBox, "--snapshot", unpacked(), "--", "true"});
    EXPECT_EQ(result.end.code, 1);
    EXPECT_NE(result.output.find("it cannot be trusted: "), std::string::npos) << result.output;
    EXPECT_EQ(run({kBox, "--snapshot", folder() + "/none", "--", "true"}).end.code, 2);
    EXPECT_EQ(run({kBox, "--snapshot", "/dev/null", "--", "true"}).end.code, 2);
}

}  // namespace
