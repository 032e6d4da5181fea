#include "tests/box/TrctlTest.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const std::string kUpTime = "Device.DeviceInfo.UpTime";
const std::string kInterval = "Device.Services.STBService.1.ServiceMonitoring.SampleInterval";
const std::string kSettings = "/etc/default/kelm-trd";

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// How a call finds the bus, how long it takes, and what it prints when it fails.
class TrctlCallTest : public TrctlTest {
  protected:
    /// The daemon's bus where the package has it.
    void offerPackagedBus() {
        mkdir("/run/kelm-trd", 0755);
        const std::string address = bus().address();
        const std::string socket = address.substr(address.find('/'));
        ASSERT_EQ(symlink(socket.c_str(), "/run/kelm-trd/bus"), 0);
    }
    static void writeSettings(const std::string& text) {
        mkdir("/etc/default", 0755);
        box::writeFile(kSettings, text);
    }
};

TEST_F(TrctlCallTest, WithoutAnAddressItFindsTheBusAsAfterLogin) {
    start();
    const std::string address = bus().address();
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    writeSettings("# The bus\nKELM_LOG_LEVEL=INFO\nexport DBUS_SESSION_BUS_ADDRESS=\"" + address +
                  "\"\n");
    EXPECT_EQ(run({"get", kUpTime}).status, 0);
    setenv("DBUS_SESSION_BUS_ADDRESS", "", 1);
    EXPECT_EQ(run({"get", kUpTime}).status, 0);

    const Result named = run({"--bus", "unix:path=/nope", "get", kUpTime});
    EXPECT_EQ(named.status, 3);
    EXPECT_TRUE(has(named.errors, "\nTried unix:path=/nope (--bus)\n")) << named.errors;
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nope", 1);
    const Result variable = run({"get", kUpTime});
    EXPECT_EQ(variable.status, 3);
    EXPECT_TRUE(has(variable.errors, "Tried unix:path=/nope (DBUS_SESSION_BUS_ADDRESS)\n"));
    EXPECT_FALSE(has(variable.errors, kSettings));

    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    writeSettings("DBUS_SESSION_BUS_ADDRESS=unix:path=/nope\n");
    const Result nowhere = run({"get", kUpTime});
    EXPECT_EQ(nowhere.status, 3);
    EXPECT_TRUE(has(nowhere.errors, "Tried unix:path=/nope (" + kSettings + "): there is no bus"))
        << nowhere.errors;
    EXPECT_TRUE(has(nowhere.errors, "\nTried unix:path=/run/kelm-trd/bus;")) << nowhere.errors;
    offerPackagedBus();
    EXPECT_EQ(run({"get", kUpTime}).status, 0);
    ASSERT_EQ(unlink(kSettings.c_str()), 0);
    EXPECT_EQ(run({"get", kUpTime}).status, 0);
}

TEST_F(TrctlCallTest, ABusWithoutADaemonIsNamedToo) {
    startBus();
    const Result result = run({"get", kUpTime});
    EXPECT_EQ(result.status, 3);
    EXPECT_TRUE(has(result.errors, "Tried " + bus().address() + " (DBUS_SESSION_BUS_ADDRESS)\n"))
        << result.errors;
}

TEST_F(TrctlCallTest, ItStartsNoBus) {
    box::writeFile("/usr/bin/dbus-launch", "#!/bin/sh\necho \"$*\" >>/tmp/launched\nexit 1\n");
    ASSERT_EQ(chmod("/usr/bin/dbus-launch", 0755), 0);
    box::writeFile("/etc/machine-id", "0123456789abcdef0123456789abcdef\n");
    setenv("DISPLAY", ":0", 1);
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(run({"get", kUpTime}).status, 3);
    for (const char* address : {"autolaunch:", "autolaunch:scope=*x", "unix:path=/x;autolaunch:"}) {
        const Result result = run({"--bus", address, "get", kUpTime});
        EXPECT_EQ(result.status, 3) << address;
        EXPECT_TRUE(has(result.errors, "no bus is started")) << result.errors;
    }
    EXPECT_NE(access("/tmp/launched", F_OK), 0) << box::readFile("/tmp/launched");
    unsetenv("DISPLAY");
}

TEST_F(TrctlCallTest, ACallThatTakesTooLongExits3) {
    start();
    EXPECT_EQ(run({"--timeout", "20", "get", kUpTime}).status, 0);
    hang();
    const Result call = run({"get", kUpTime, "--timeout", "0.2"});
    EXPECT_EQ(call.status, 3);
    EXPECT_TRUE(has(call.errors, "does not answer")) << call.errors;
    const Result wait = run({"wait", "--timeout", "0.2"});
    EXPECT_EQ(wait.status, 3);
    EXPECT_TRUE(has(wait.errors, "does not answer")) << wait.errors;
    EXPECT_EQ(run({"--timeout", "0.2", "wait"}).status, 3);
    daemon().send(SIGCONT);
    EXPECT_EQ(run({"wait"}).status, 0);
}

TEST_F(TrctlCallTest, QuietLeavesTheStatusAndTheValues) {
    start();
    const auto expectSilence = [](const Words& words, int status, const std::string& output) {
        const Result result = run(words);
        EXPECT_EQ(result.status, status) << words.back();
        EXPECT_EQ(result.output, output) << words.back();
        EXPECT_EQ(result.errors, "") << words.back();
    };
    expectSilence({"get", "Device.DeviceInfo.Manufacturer", "Device.Nope", "-q"}, 1,
                  "Device.DeviceInfo.Manufacturer = KELM\n");
    expectSilence({"--quiet", "set", kInterval, "+7"}, 0, kInterval + " = 7\n");
    expectSilence({"--quiet", "set", kInterval, "ten"}, 1, kInterval + " = 7\n");
    expectSilence({"--quiet", "set", kUpTime, "1"}, 1, "");
    expectSilence({"--quiet", "diff", "/tmp/missing"}, 2, "");
    expectSilence({"--quiet", "--bus", "unix:path=/nope", "list"}, 3, "");
    const Result wrong = run({"--quiet", "gte"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_TRUE(has(wrong.errors, "did you mean `get`?")) << wrong.errors;
    const Result full = bash("\"$TRCTL\" list --quiet >/dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.errors, "");
}

TEST_F(TrctlCallTest, HelpIntoAFullDiskIsAnError) {
    for (const char* words : {"--help", "help", "help get", "get --help", "--version"}) {
        const Result result = bash(std::string("\"$TRCTL\" ") + words + " >/dev/full");
        EXPECT_EQ(result.status, 1) << words;
        EXPECT_TRUE(has(result.errors, "No space left on device")) << result.errors;
    }
    EXPECT_EQ(run({"help", "get"}).output, run({"get", "--help"}).output);
}

}  // namespace
