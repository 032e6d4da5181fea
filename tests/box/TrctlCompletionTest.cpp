#include "tests/box/TrctlTest.h"
#include "tests/support/TerminalChild.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const std::string kUpTime = "Device.DeviceInfo.UpTime";
const std::string kConfig = "Device.Services.STBService.1.X_Kelm.Config.";
const std::string kHost = kConfig + "SyslogHost";
const std::string kFolder = KELM_TRCTL_FOLDER;

const std::string kFunction = "trctl() { \"$TRCTL\" \"$@\"; }; ";
const std::vector<std::string> kBash = {"/usr/host/bin/bash", "--norc", "--noprofile", "-i"};
const std::string kBashStart = kFunction + "source " + kFolder + "/trctl.bash";
const std::vector<std::string> kZsh = {"/usr/host/bin/zsh", "-f", "-i"};
const std::string kZshStart =
    kFunction + "fpath=(" + kFolder + " $fpath); autoload -U compinit; compinit -u -D";

/// What trctl offers to the three shells, and a person's keys in each of them.
class TrctlCompletionTest : public TrctlTest {
  protected:
    void SetUp() override { start(); }

    static std::string offered(const std::string& line) {
        const Result result = run({"complete", line});
        EXPECT_EQ(result.errors, "") << line;
        return result.output;
    }
    std::string atBus(const std::string& option) { return option + bus().address() + ' '; }

    /// Types into a shell that runs \p start first, and awaits each text in turn behind its keys.
    static void type(const Words& shell, const std::string& start,
                     const std::vector<std::pair<std::string, std::string>>& keysAndTexts) {
        TerminalChild terminal(shell, 200, 50,
                               {{"TERM", "dumb"}, {"PS1", "$ "}, {"TRCTL", KELM_TRCTL_PROGRAM}});
        terminal.type(start + "; echo read''y\n");
        ASSERT_TRUE(terminal.waitForText("ready")) << terminal.screen();
        for (const auto& [keys, text] : keysAndTexts) {
            const std::size_t seen = terminal.screen().size();
            terminal.type(keys);
            ASSERT_TRUE(terminal.waitForText(text, seen)) << keys << terminal.screen();
        }
    }

    /// In each quoting the word grows level by level, and the line that results runs. Ctrl-U
    /// removes a line again.
    std::vector<std::pair<std::string, std::string>> linesOfAPerson() {
        return {
            {"trctl ge\t", "get "},
            {"Device.DeviceI\t", "nfo."},
            {"UpT\t\n", kUpTime + " = "},
            {"trctl get \"Device.DeviceI\t", "nfo."},
            {"UpT\t\n", kUpTime + " = "},
            {"trctl get 'Device.DeviceInfo.UpT\t\n", kUpTime + " = "},
            {"trctl --bus " + bus().address() + " get Device.DeviceInfo.UpT\t\n", kUpTime + " = "},
            {"trctl --color=ne\t get Device.DeviceInfo.UpT\t\n", kUpTime + " = "},
            {"trctl set " + kConfig + "Sys\t 10.0.0.7\n", kHost + " = 10.0.0.7"},
            {"trctl diff /tmp/sav\t", "ed.json "}};
    }
};

TEST_F(TrctlCompletionTest, SetIsOfferedWritableNamesOnly) {
    EXPECT_EQ(offered("trctl get " + kUpTime), kUpTime + '\n');
    EXPECT_EQ(offered("trctl set " + kUpTime), "");
    EXPECT_EQ(offered("trctl set Device.Eth"), "");
    EXPECT_EQ(offered("trctl set Device.Services.STBService.1.X"),
              "Device.Services.STBService.1.X_Kelm.\n");
    EXPECT_EQ(offered("trctl set " + kConfig + "Sys"), kHost + '\n');
    EXPECT_EQ(offered("trctl set Device.A=1 " + kConfig + "Sys"), kHost + "=\n");
    const Words before = listed();
    EXPECT_EQ(offered("trctl set Device.Nope."), "");
    EXPECT_EQ(listed(), before);
}

TEST_F(TrctlCompletionTest, TheBusOnTheLineIsAskedInEveryForm) {
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nope", 1);
    EXPECT_EQ(offered("trctl get Device.I"), "");
    EXPECT_EQ(offered("trctl " + atBus("--bus ") + "get Device.I"), "Device.IP.\n");
    EXPECT_EQ(offered("trctl get " + atBus("--bus=") + "Device.I"), "Device.IP.\n");
    EXPECT_EQ(offered("trctl get --bus '" + bus().address() + "' Device.I"), "Device.IP.\n");
    EXPECT_EQ(offered("trctl wa"), "watch\nwait\n");
}

TEST_F(TrctlCompletionTest, AnOpenQuoteLeadsToWhereTheNamesDiffer) {
    EXPECT_EQ(offered("trctl get 'Device.I"), "Device.IP.Interface.1.\nDevice.IP.Interface.2.\n");
    EXPECT_EQ(offered("trctl get \"Device.DeviceInfo.UpT"), kUpTime + '\n');
}

TEST_F(TrctlCompletionTest, ADaemonThatHangsDelaysAKeyForAMomentOnly) {
    hang();
    EXPECT_EQ(offered("trctl get Device."), "");
    EXPECT_EQ(offered("trctl ge"), "get\n");
    daemon().send(SIGCONT);
}

TEST_F(TrctlCompletionTest, AnAddressThatATerminalWouldObeyIsNotOffered) {
    client().getWritable("Odd.a\nb");
    client().getWritable("Odd.c\x1b[2J");
    client().getWritable("Odd.d e");
    EXPECT_EQ(offered("trctl get Odd."), "Odd.d e\n");
}

TEST_F(TrctlCompletionTest, BashCompletesALineThatAPersonTypes) {
    box::writeFile("/tmp/saved.json", "{}");
    type(kBash, kBashStart, linesOfAPerson());
}

TEST_F(TrctlCompletionTest, ZshCompletesALineThatAPersonTypes) {
    box::writeFile("/tmp/saved.json", "{}");
    type(kZsh, kZshStart, linesOfAPerson());
}

// It prints what a key would offer.
TEST_F(TrctlCompletionTest, FishOffersWhatTrctlPrints) {
    box::writeFile("/tmp/saved.json", "{}");
    const auto fish = [](const std::string& line) {
        return bash(
                   "export TRCTL; /usr/host/bin/fish --no-config -c 'function trctl; $TRCTL $argv; "
                   "end; source " +
                   kFolder + "/trctl.fish; complete -C $argv[1]' " + line)
            .output;
    };
    EXPECT_EQ(fish("'trctl ge'"), "get\n");
    EXPECT_EQ(fish("'trctl report --s'"), "--seconds\n--snapshot\n");
    EXPECT_EQ(fish("'trctl --color=a'"), "--color=always\n--color=auto\n");
    EXPECT_EQ(fish("'trctl get Device.I'"), "Device.IP.\n");
    EXPECT_EQ(fish("\"trctl get 'Device.DeviceInfo.UpT\""), kUpTime + '\n');
    EXPECT_EQ(fish("'trctl diff /tmp/sav'"), "/tmp/saved.json\n");
}

TEST_F(TrctlCompletionTest, NoShellEvaluatesAnAddress) {
    client().getWritable("Evil.$(touch /tmp/evil)`touch /tmp/evil`;touch /tmp/evil");
    // The whole name gets into the line, and as one word to trctl, which prints it.
    const auto keys = [](const char* quote) {
        return std::vector<std::pair<std::string, std::string>>{
            {std::string("trctl get ") + quote + "Evi\t", "l."}, {"\t\n", "touch /tmp/evil = "}};
    };
    type(kBash, kBashStart, keys(""));
    for (const char* quote : {"", "\"", "'"}) type(kZsh, kZshStart, keys(quote));
    EXPECT_EQ(bash("test -e /tmp/evil").status, 1);
}

}  // namespace
