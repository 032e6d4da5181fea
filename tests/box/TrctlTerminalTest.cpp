#include "tests/box/TrctlTest.h"
#include "tests/support/TerminalChild.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace {

const std::string kUpTime = "Device.DeviceInfo.UpTime";
const std::string kEnter = "\x1b[?1049h\x1b[?25l";
const std::string kLeave = "\x1b[?25h\x1b[?1049l";
const std::string kHome = "\x1b[H";

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

void expectToFit(const std::string& text, std::size_t columns) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find("\r\n", at);
        ASSERT_NE(end, std::string::npos);
        EXPECT_LE(end - at, columns) << text.substr(at, end - at);
        at = end + 2;
    }
}

/// trctl as a person sees it.
class TrctlTerminalTest : public TrctlTest {
  protected:
    void SetUp() override { start(); }

    static TerminalChild onTerminal(const Words& arguments, const Child::Environment& environment,
                                    unsigned short columns = 80) {
        Words command = {KELM_TRCTL_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        Child::Environment all = {{"TERM", "xterm"}};
        all.insert(all.end(), environment.begin(), environment.end());
        return {command, columns, 24, all};
    }
    static std::string seen(const Words& arguments, const Child::Environment& environment = {},
                            unsigned short columns = 80) {
        TerminalChild trctl = onTerminal(arguments, environment, columns);
        EXPECT_TRUE(trctl.waitForEnd().has_value());
        return trctl.screen();
    }
};

TEST_F(TrctlTerminalTest, ColoursAppearOnlyOnTerminalsThatAllowThem) {
    const Words tree = {"tree", "Device.DeviceInfo.MemoryStatus."};
    EXPECT_TRUE(has(seen(tree), "\x1b["));
    EXPECT_TRUE(has(seen({"get", "Device.DeviceInfo.Manufacturer"}), "= \x1b[32mKELM\x1b[0m\r\n"));
    EXPECT_FALSE(has(seen({"get", kUpTime}, {{"NO_COLOR", "1"}}), "\x1b"));
    EXPECT_FALSE(has(seen(tree, {{"NO_COLOR", "1"}}), "\x1b"));
    EXPECT_FALSE(has(seen(tree, {{"TERM", "dumb"}}), "\x1b"));
    EXPECT_FALSE(has(seen({"--color", "never", "tree", "Device.IP."}), "\x1b"));
    EXPECT_FALSE(has(run(tree).output, "\x1b"));
    EXPECT_TRUE(has(run({"--color", "always", "tree", "Device.IP."}).output, "\x1b["));
}

TEST_F(TrctlTerminalTest, ValuesStandInAColumn) {
    const std::string text = seen({"get", "Device.DeviceInfo.Manufacturer*"}, {{"NO_COLOR", "1"}});
    EXPECT_TRUE(has(text, "Device.DeviceInfo.Manufacturer    = KELM\r\n")) << text;
    EXPECT_TRUE(has(text, "Device.DeviceInfo.ManufacturerOUI = 001A2B\r\n")) << text;
}

TEST_F(TrctlTerminalTest, AReportShowsItsProgressAndClearsIt) {
    const std::string text = seen({"report", "/tmp/report.html", "--seconds", "1", kUpTime});
    EXPECT_TRUE(has(text, " parameters: 1 of 1 s\x1b[K\r\x1b[K/tmp/report.html: ")) << text;
}

// In the C locale a column is a byte.
TEST_F(TrctlTerminalTest, NothingWrapsAt60Columns) {
    const Child::Environment plain = {{"NO_COLOR", "1"}, {"LC_ALL", "C"}};
    const std::string syslogHost = "Device.Services.STBService.1.X_Kelm.Config.SyslogHost";
    ASSERT_TRUE(client().set(syslogHost, std::string(200, 'x')).ok);
    box::writeFile("/tmp/saved.json", "{}");
    const std::string cut = "xxx~\r\n";
    for (const Words& words : {Words{"get", "Device."},
                               {"list", "--long"},
                               {"tree"},
                               {"info", "**"},
                               {"diff", "/tmp/saved.json", "Device."},
                               {"set", syslogHost, std::string(200, 'x')}}) {
        const std::string text = seen(words, plain, 60);
        expectToFit(text, 60);
        EXPECT_TRUE(has(text, cut)) << words.front() << '\n' << text;
    }
    expectToFit(seen({"list"}, plain, 60), 60);
    expectToFit(seen({"get", "Device."}, plain, 9), 9);
    expectToFit(seen({"tree"}, plain, 9), 9);
    const std::string get = seen({"get", "Device."}, plain, 60);
    EXPECT_TRUE(has(get, "\r\n...1.X_Kelm.Config.SyslogHost  = xxxxxxxxxxxxxxxxxxxxxxxxxx~\r\n"))
        << get;
}

TEST_F(TrctlTerminalTest, WithWideNothingIsCutOrPadded) {
    std::string plain = run({"get", "Device.Services.STBService.1.Capabilities."}).output;
    for (std::size_t at = 0; (at = plain.find('\n', at)) != std::string::npos; at += 2)
        plain.insert(at, "\r");
    EXPECT_EQ(seen({"get", "--wide", "Device.Services.STBService.1.Capabilities."},
                   {{"NO_COLOR", "1"}}, 60),
              plain);
    EXPECT_FALSE(has(seen({"list", "--wide"}, {{"NO_COLOR", "1"}}, 60), "..."));
}

TEST_F(TrctlTerminalTest, ATreeFitsTheTerminal) {
    const std::string text =
        seen({"tree", "Device.DeviceInfo."}, {{"NO_COLOR", "1"}, {"LC_ALL", "C"}}, 40);
    expectToFit(text, 40);
    EXPECT_TRUE(has(text, "|-- Description = KELM Orbit B410\r\n")) << text;
    EXPECT_TRUE(has(text, "~\r\n")) << text;
}

TEST_F(TrctlTerminalTest, PlotDrawsAndRestoresTheTerminal) {
    TerminalChild trctl = onTerminal({"watch", "--plot", "--interval", "0.1", kUpTime}, {});
    ASSERT_TRUE(trctl.waitForText(kUpTime + " = "));
    // Two frames and more: a character of Braille is in each.
    ASSERT_TRUE(trctl.waitForText(kHome, trctl.screen().rfind(kHome) + 1));
    EXPECT_TRUE(has(trctl.screen(), kEnter));
    EXPECT_TRUE(has(trctl.screen(), "\xE2\xA0") || has(trctl.screen(), "\xE2\xA1") ||
                has(trctl.screen(), "\xE2\xA2"));
    EXPECT_FALSE(has(trctl.screen(), kLeave));
    trctl.type("\x03");
    ASSERT_TRUE(trctl.waitForEnd().has_value());
    EXPECT_EQ(*trctl.waitForEnd(), (ExitStatus{0, 0}));
    const std::size_t left = trctl.screen().rfind(kLeave);
    ASSERT_NE(left, std::string::npos);
#ifdef __SANITIZE_THREAD__
    // Its _exit prints what stdout still holds, which may be the end of a frame.
    EXPECT_FALSE(has(trctl.screen().substr(left), kHome));
#else
    EXPECT_EQ(trctl.screen().substr(left), kLeave);
#endif
}

TEST_F(TrctlTerminalTest, PlotRestoresTheTerminalAndEndsByTheSignal) {
    TerminalChild trctl = onTerminal({"watch", "--plot", "--interval", "0.1", kUpTime}, {});
    ASSERT_TRUE(trctl.waitForText("\x1b[J"));
    trctl.type("\x1c");
    EXPECT_EQ(trctl.waitForEnd(), (ExitStatus{0, SIGQUIT}));
    // An emulator prints a message behind it.
    const std::size_t left = trctl.screen().rfind(kLeave);
    ASSERT_NE(left, std::string::npos);
    EXPECT_FALSE(has(trctl.screen().substr(left), kHome));
}

TEST_F(TrctlTerminalTest, PlotIsRedrawnWhenTheTerminalIsResized) {
    TerminalChild trctl = onTerminal({"watch", "--plot", "--interval", "600", kUpTime}, {});
    ASSERT_TRUE(trctl.waitForText("\x1b[J"));
    const std::size_t first = trctl.screen().size();
    trctl.resize(30, 10);
    ASSERT_TRUE(trctl.waitForText("\x1b[J", first));
    const std::string frame = trctl.screen().substr(first);
    EXPECT_TRUE(has(frame, "~\x1b[K")) << "the headline is not cut to the new size";
}

TEST_F(TrctlTerminalTest, PlotRestoresTheTerminalAndExits3WhenTheDaemonDies) {
    TerminalChild trctl =
        onTerminal({"watch", "--plot", "--interval", "0.1", "--ascii", kUpTime}, {});
    ASSERT_TRUE(trctl.waitForText("*"));
    daemon().send(SIGKILL);
    ASSERT_TRUE(trctl.waitForEnd().has_value());
    EXPECT_EQ(*trctl.waitForEnd(), (ExitStatus{3, 0}));
    const std::size_t left = trctl.screen().find(kLeave);
    ASSERT_NE(left, std::string::npos);
    EXPECT_NE(trctl.screen().find("trctl: ", left), std::string::npos);
}

TEST_F(TrctlTerminalTest, PlotNeedsATerminalAndOneNumber) {
    const Result noTerminal = run({"watch", "--plot", kUpTime});
    EXPECT_EQ(noTerminal.status, 2);
    EXPECT_TRUE(has(noTerminal.errors, "on a terminal only")) << noTerminal.errors;
    TerminalChild text = onTerminal({"watch", "--plot", "Device.DeviceInfo.Manufacturer"}, {});
    EXPECT_EQ(text.waitForEnd(), (ExitStatus{1, 0}));
    EXPECT_TRUE(has(text.screen(), "is not a number"));
    TerminalChild many = onTerminal({"watch", "--plot", "Device.IP."}, {});
    EXPECT_EQ(many.waitForEnd(), (ExitStatus{2, 0}));
}

TEST_F(TrctlTerminalTest, CtrlCEndsWatchWithStatus0) {
    TerminalChild trctl = onTerminal({"watch", "--interval", "0.1"}, {});
    ASSERT_TRUE(trctl.waitForText(" -> "));
    trctl.type("\x03");
    EXPECT_EQ(trctl.waitForEnd(), (ExitStatus{0, 0}));
}

}  // namespace
