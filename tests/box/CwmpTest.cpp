// The back end of the CWMP client, beside the unmodified daemon, spoken to as the client does.

#include "tests/box/CwmpClient.h"
#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>

#include <signal.h>
#include <sys/stat.h>

namespace {

using Lines = CwmpClient::Lines;

const std::string kConfig = "Device.Services.STBService.1.X_Kelm.Config.";
const std::string kHost = kConfig + "SyslogHost";
const std::string kMonitoring = "Device.Services.STBService.1.ServiceMonitoring.";
constexpr char kCode[] = "Device.DeviceInfo.ProvisioningCode";
constexpr char kFile[] = "/tmp/.easycwmp_notif_param_value";
const Lines kCheck{R"({ "command": "check_value_change" })"};
const Lines kUpdate{R"({ "command": "update_value_change" })"};
const Lines kInform{R"({ "command": "inform", "class": "parameter" })"};
const Lines kDeviceId{R"({ "command": "inform", "class": "device_id" })"};

std::string fault(const std::string& parameter, const std::string& code) {
    return "{ \"parameter\": \"" + parameter + "\", \"fault_code\": \"" + code + "\" }";
}

// With any status, which the caller's text shows better.
void shell(const std::string& command) {
    EXPECT_NE(std::system(command.c_str()), -1);
}

std::string printed(const std::string& command) {
    shell(command + " >/tmp/printed 2>&1");
    return box::readFile("/tmp/printed");
}

class CwmpTest : public DaemonTest {
  protected:
    void SetUp() override { start(); }

    static std::string valueOf(const std::string& parameter) {
        const Lines lines = cwmp({cwmpGet("value", parameter)});
        return lines.size() == 1 ? memberOf(lines.front(), "value").value_or("no value")
                                 : "no line";
    }
    static Lines set(const std::string& parameter, const std::string& text) {
        return cwmp({cwmpSet(parameter, text), cwmpApply()});
    }
    static void watch(const std::string& path, const std::string& notification) {
        EXPECT_EQ(cwmp({cwmpLine("set", "notification", path, &notification),
                        R"({ "command": "apply", "class": "notification" })"}),
                  Lines{R"({ "status": "0" })"});
    }
    /// The parameters that a check reports.
    static Lines changes() {
        Lines names;
        for (const std::string& line : cwmp(kCheck))
            names.push_back(memberOf(line, "parameter").value_or("?") + '=' +
                            memberOf(line, "value").value_or("?"));
        return names;
    }
    static Lines parametersOf(const Lines& answers) {
        Lines names;
        for (const std::string& line : answers)
            names.push_back(memberOf(line, "parameter").value_or("?"));
        return names;
    }
};

/// Plays golden/cwmp-sessions.txt.
class Sessions {
  public:
    explicit Sessions(std::function<void()> awaitCycle) : awaitCycle_(std::move(awaitCycle)) {}

    void play(const std::string& path) {
        std::ifstream file(path);
        ASSERT_TRUE(file.good()) << path;
        for (std::string line; std::getline(file, line);) {
            ++number_;
            if (!line.empty() && line.front() != '#' && line.rfind("==", 0) != 0) step(line);
            if (testing::Test::HasFailure()) FAIL() << path << ":" << number_ << ": " << line;
        }
    }

  private:
    void step(const std::string& line) {
        if (line == "start")
            client_ = std::make_unique<CwmpClient>();
        else if (line == "cycle")
            awaitCycle_();
        else if (line == "eof")
            end_ = client_->hangUp();
        else if (line == "exit status 0")
            EXPECT_EQ(end_, ExitStatus{});
        else if (line.rfind("<- ", 0) == 0)
            say(line.substr(3));
        else
            hear(line.substr(3));
    }
    void say(const std::string& command) {
        if (memberOf(command, "command") == "exit")
            end_ = client_->exit();
        else
            client_->send(command + "\n");
    }
    void hear(const std::string& expected) {
        if (expected != CwmpClient::kPrompt) {
            expected_.push_back(expected);
            return;
        }
        const auto answers = client_->answers();
        ASSERT_TRUE(answers.has_value());
        EXPECT_EQ(faultOfAnswers(*answers), "");
        compare(*answers);
        expected_.clear();
    }
    void compare(const Lines& answers) {
        if (expected_ == Lines{"forced"}) {
            EXPECT_EQ(answers.size(), 11U);
            return;
        }
        ASSERT_EQ(answers.size(), expected_.size()) << testing::PrintToString(answers);
        for (std::size_t i = 0; i < answers.size(); ++i) {
            const std::string quoted =
                std::regex_replace(expected_[i], std::regex(R"([.*+?^$(){}\[\]|\\])"), R"(\$&)");
            const std::string form = std::regex_replace(quoted, std::regex("#"), "[^\"]*");
            EXPECT_TRUE(std::regex_match(answers[i], std::regex(form))) << answers[i];
        }
    }

    const std::function<void()> awaitCycle_;
    std::unique_ptr<CwmpClient> client_;
    std::optional<ExitStatus> end_;
    Lines expected_;
    int number_ = 0;
};

void placeHook(const std::string& name, const std::string& script) {
    const std::string path = "/etc/kelm-trd/cwmp/" + name;
    box::writeFile(path, "#!/bin/sh\n" + script);
    chmod(path.c_str(), 0755);
}

TEST_F(CwmpTest, TheSessionsOfADayAreAnswered) {
    placeHook("download",
              "case $KELM_CWMP_URL in */nope.bin) exit 10 ;; esac\necho x >$KELM_CWMP_TARGET\n");
    placeHook("apply", "exit 18\n");
    Sessions([this] { waitForCycles(1); }).play(KELM_CWMP_SESSIONS);
}

TEST_F(CwmpTest, TheTreeIsWholeInValuesNamesAndAttributes) {
    const Lines values = parametersOf(cwmp({cwmpGet("value", "Device.")}));
    Lines listed = client().listParametersOnly().list;
    for (const std::string& line : cwmp({cwmpGet("value", "Device.ManagementServer.")}))
        listed.push_back(*memberOf(line, "parameter"));
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(values, listed);
    EXPECT_EQ(parametersOf(cwmp({cwmpGet("notification", "Device.")})), listed);
    CwmpClient session;
    session.answers();
    const std::string all = "0", next = "1";
    const Lines names = parametersOf(session.ask({cwmpLine("get", "name", "Device.", &all)}));
    Lines walked{"Device."}, open{"Device."};
    while (!open.empty()) {
        const std::string object = open.back();
        open.pop_back();
        for (const std::string& name :
             parametersOf(session.ask({cwmpLine("get", "name", object, &next)}))) {
            walked.push_back(name);
            if (name.back() == '.') open.push_back(name);
        }
    }
    std::sort(walked.begin(), walked.end());
    EXPECT_EQ(walked, names);
    EXPECT_EQ(parametersOf(session.ask({cwmpLine("get", "name", "", &next)})), Lines{"Device."});
    for (const std::string& name : client().listAddresses().list)
        EXPECT_TRUE(std::binary_search(names.begin(), names.end(), name)) << name;
}

TEST_F(CwmpTest, EveryByteOfAGoodTextArrives) {
    std::string large;
    while (large.size() < 100 * 1024)
        large += "\xE7\x94\xB5 \"'\\$(touch /tmp/ran)`touch /tmp/ran`\n";
    for (const std::string& text :
         {std::string(" a \"b\" 'c' \\d $(touch /tmp/ran) `touch /tmp/ran` ; & | <>\n\n "),
          std::string("\t\r\n"), std::string("-n"), std::string(), large}) {
        EXPECT_EQ(set(kHost, text), Lines{R"({ "status": "1" })"});
        EXPECT_EQ(box::readFile("/var/kelm/syslog_host"), text);
    }
    const std::string code = "a \"b\" 'c' \\d $(touch /tmp/ran) `touch /tmp/ran` \\\\ \\\"";
    EXPECT_EQ(set(kCode, code), Lines{R"({ "status": "1" })"});
    EXPECT_EQ(valueOf(kCode), code);
    const std::string name = "Device.ManagementServer.Username";
    EXPECT_EQ(set(name, " it's\n\"x\" "), Lines{R"({ "status": "1", "config_load": "1" })"});
    EXPECT_EQ(valueOf(name), " it's\n\"x\" ");
    EXPECT_NE(std::system("test -e /tmp/ran"), 0);
    EXPECT_EQ(printed("uci changes"), "");
}

TEST_F(CwmpTest, SetsAreReadBackByTheirType) {
    EXPECT_EQ(
        cwmp({cwmpSet(kMonitoring + "SampleInterval", "007"),
              cwmpSet(kMonitoring + "SampleEnable", "true"),
              cwmpSet(kMonitoring + "MainStream.1.Total.Reset", "1"), cwmpApply("value", "key 7")}),
        Lines{R"({ "status": "1" })"});
    EXPECT_EQ(valueOf(kMonitoring + "SampleInterval"), "7");
    EXPECT_EQ(valueOf("Device.ManagementServer.ParameterKey"), "key 7");
    EXPECT_EQ(set("Device.ManagementServer.Password", "s3cret"),
              Lines{R"({ "status": "1", "config_load": "1" })"});
    EXPECT_EQ(valueOf("Device.ManagementServer.Password"), "");
    EXPECT_EQ(printed("uci get easycwmp.@acs[0].password"), "s3cret\n");
    EXPECT_EQ(valueOf(kConfig + "WiFiConfig.WPAPassphrase"), "");
    EXPECT_EQ(
        cwmp({cwmpSet(kMonitoring + "SampleInterval", "-1"),
              cwmpSet(kMonitoring + "SampleEnable", "2"), cwmpSet(kHost, "\x1b"), cwmpApply()}),
        (Lines{fault(kMonitoring + "SampleInterval", "9007"),
               fault(kMonitoring + "SampleEnable", "9007"), fault(kHost, "9007")}));
    const auto addresses = client().listAddresses().list;
    EXPECT_EQ(set("Device.Nope", "x"), Lines{fault("Device.Nope", "9005")});
    EXPECT_EQ(client().listAddresses().list, addresses);
}

TEST_F(CwmpTest, WhatDoesNotTakePutsBackWhatWasWrittenBefore) {
    const std::string type = kConfig + "UpdateType";
    box::writeFile("/run/kelm-box/uci/config/other/@x[0]/.type", "x\n");
    ASSERT_EQ(
        std::system(
            "uci set other.@x[0].a=1; rm /var/kelm/update_type; mkdir -p /var/kelm/update_type/x"),
        0);
    EXPECT_EQ(cwmp({cwmpSet(kHost, "10.9.9.9"), cwmpSet("Device.ManagementServer.Username", "new"),
                    cwmpSet(kCode, "new"), cwmpSet(type, "never"), cwmpApply()}),
              Lines{fault(type, "9002")});
    EXPECT_EQ(valueOf(kHost), "192.168.1.1");
    EXPECT_EQ(valueOf(kCode), "");
    EXPECT_EQ(valueOf("Device.ManagementServer.Username"), "stb");
    EXPECT_EQ(printed("uci changes"), "other.@x[0].a='1'\n");
}

TEST_F(CwmpTest, EveryChangeIsReportedOnce) {
    watch(kConfig, "2");
    watch("Device.DeviceInfo.UpTime", "1");
    struct stat file {};
    ASSERT_EQ(stat(kFile, &file), 0);
    EXPECT_EQ(file.st_mode & 07777U, 0640U);
    // A file-backed parameter, of which the daemon itself notices nothing.
    box::writeFile("/var/kelm/syslog_host", "10.0.0.1");
    EXPECT_EQ(cwmp({cwmpGet("value", kHost)}).size(), 1U);
    Lines got = changes();
    EXPECT_EQ(got.back(), kHost + "=10.0.0.1");
    // While the client and the daemon start again.
    box::writeFile("/var/kelm/syslog_host", "10.0.0.2");
    cwmp(kUpdate);
    daemon().send(SIGINT);
    expectEnd({});
    launch();
    waitForFirstCycle();
    cwmp(kInform);
    got = changes();
    EXPECT_EQ(got.back(), kHost + "=10.0.0.2");
    EXPECT_LE(got.size(), 2U) << testing::PrintToString(got);  // perhaps the up time too
    watch("Device.DeviceInfo.UpTime", "0");
    EXPECT_EQ(changes(), Lines{});
    EXPECT_EQ(set(kHost, "10.0.0.3"), Lines{R"({ "status": "1" })"});
    EXPECT_EQ(changes(), Lines{});
}

TEST_F(CwmpTest, TheDaemonPokesTheClientForWhatIsWatched) {
    box::writeFile("/run/kelm-box/ubus/queue", "");
    watch("Device.DeviceInfo.UpTime", "2");
    ASSERT_TRUE(box::waitUntil([] {
        return box::readFile("/run/kelm-box/ubus/queue").find("-t 1 call tr069 notify\n") !=
               std::string::npos;
    }));
    const Lines got = cwmp(kCheck);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(memberOf(got[0], "notification"), "2");
    EXPECT_EQ(memberOf(got[0], "type"), "xsd:unsignedInt");
    // A daemon that was started again knows what is watched after the next session.
    daemon().send(SIGINT);
    expectEnd({});
    launch();
    waitForFirstCycle();
    cwmp(kInform);
    box::clearCalls("ubus");
    EXPECT_TRUE(box::waitUntil([] { return !box::calls("ubus").empty(); }));
}

TEST_F(CwmpTest, HostileTextsHarmNeitherJsonNorXml) {
    watch("Device.Services.STBService.1.X_Kelm.WiFiStatus.", "2");
    box::writeFile("/run/kelm-box/iw/wlan0",
                   "Connected to 9c:3d:cf:12:ab:ef (on wlan0)\n\tSSID: "
                   "\",\"value\":null,\"x\":\"\x01\xff\n\tfreq: 5180\n"
                   "\tsignal: -45 dBm\n\ttx bitrate: 780.0 MBit/s\n");
    box::writeFile("/tmp/syslog", std::string(100'000, 'x') + "\n\x01 last \"line\"\n");
    waitForCycles(1);
    const Lines got = cwmp(kCheck);
    ASSERT_EQ(got.size(), 1U) << testing::PrintToString(got);
    EXPECT_EQ(memberOf(got[0], "value"), "\",\"value\":null,\"x\":\"\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(valueOf("Device.DeviceInfo.DeviceLog"), "\xEF\xBF\xBD last \"line\"\n");
}

TEST_F(CwmpTest, OddLinesAreAnsweredAndNothingElseIsPrinted) {
    CwmpClient client;
    ASSERT_EQ(client.answers(), Lines{});
    const std::string large(1 << 20, 'x');
    for (const std::string& line :
         {std::string("no JSON"), large, '"' + large + '"', "{\"command\":\"" + large + "\"}",
          cwmpGet("value", large), cwmpLine("get", "x", ""), std::string(500, '['),
          std::string("{\"command\":\"get\",\"class\":\"value\",\"parameter\":\"\xff\"}"),
          std::string(3 << 20, 'y'), cwmpSet(large, "x") + "\n" + cwmpApply()}) {
        const Lines got = client.ask({line});
        ASSERT_EQ(got.size(), 1U) << line.substr(0, 80);
        const auto code = memberOf(got[0], "fault_code");
        EXPECT_TRUE(code == "9003" || code == "9005") << got[0].substr(0, 80);
    }
    EXPECT_EQ(client.ask({"", " "}), Lines{});
    client.send(R"({ "command": "get", "cla)");
    EXPECT_EQ(client.hangUp(), ExitStatus{});
}

TEST_F(CwmpTest, ADaemonThatHangsOrDiesCostsTheCommandAndNoMore) {
    CwmpClient client;
    client.answers();
    EXPECT_EQ(client.ask({cwmpGet("value", kHost)}).size(), 1U);
    hang();
    // The first one waits; the others of its group need not.
    EXPECT_EQ(client.ask({cwmpGet("value", kHost), cwmpGet("value", "Device."), cwmpSet(kHost, "x"),
                          cwmpApply()}),
              (Lines{fault(kHost, "9002"), fault("Device.", "9002"), fault(kHost, "9002")}));
    daemon().send(SIGCONT);
    EXPECT_EQ(client.ask({cwmpGet("value", kHost)}).size(), 1U);
    EXPECT_EQ(valueOf(kHost), "192.168.1.1");
    daemon().send(SIGKILL);
    EXPECT_EQ(client.ask({cwmpGet("value", "Device.")}), Lines{fault("Device.", "9002")});
    EXPECT_EQ(client.ask(kInform).size(), 2U);
    bus().kill();
    EXPECT_EQ(client.ask({cwmpGet("value", "Device.")}), Lines{fault("Device.", "9002")});
    EXPECT_EQ(client.exit(), ExitStatus{});
}

TEST_F(CwmpTest, UciThatFailsLosesNothing) {
    watch(kConfig, "2");
    box::writeFile("/var/kelm/syslog_host", "10.0.0.1");
    const std::string before = box::readFile(kFile);
    for (const char* how : {"exit 1", "silent", "garbage", "flood", "closeearly 1"}) {
        box::setFault("uci", how);
        EXPECT_EQ(cwmp({cwmpGet("notification", kHost)}), Lines{fault(kHost, "9002")}) << how;
        EXPECT_EQ(cwmp(kCheck), Lines{}) << how;
        EXPECT_EQ(box::readFile(kFile), before) << how;
    }
    box::setFault("uci", "hang");
    EXPECT_EQ(cwmp(kCheck), Lines{});
    EXPECT_EQ(box::readFile(kFile), before);
    box::setFault("uci", "exit 1");
    EXPECT_EQ(set(kHost, "10.7.7.7"), Lines{R"({ "fault_code": "9002" })"});
    EXPECT_EQ(box::readFile("/var/kelm/syslog_host"), "10.0.0.1");
    box::setFault("uci", "");
    EXPECT_EQ(changes(), Lines{kHost + "=10.0.0.1"});
}

TEST_F(CwmpTest, HooksGetWhatTheyNeedAndTheirStatusIsAFault) {
    const std::string download =
        R"({ "command": "download", "url": "http:\/\/a\/$(b) \"c\"", "file_type": "3 Vendor Configuration File", )"
        R"("file_size": "8", "user_name": "me", "password": "s3cret" })";
    EXPECT_EQ(cwmp({download}), Lines{R"({ "fault_code": "9001" })"});
    EXPECT_EQ(cwmp({R"({ "command": "reboot" })", R"({ "command": "factory_reset" })"}), Lines{});
    placeHook("download",
              "echo \"$#|$KELM_CWMP_URL|$KELM_CWMP_FILE_TYPE|$KELM_CWMP_FILE_SIZE|$KELM_CWMP_USER|"
              "$KELM_CWMP_PASSWORD\" >/tmp/given\nls /proc/$$/fd >>/tmp/given\necho noise\n"
              "echo file >\"$KELM_CWMP_TARGET\"\n");
    placeHook("apply",
              "[ \"$(cat \"$KELM_CWMP_TARGET\")\" = file ] && echo \"$KELM_CWMP_FILE_TYPE\" "
              ">/tmp/applied\n");
    placeHook("reboot", "echo yes >/tmp/rebooted\n");
    EXPECT_EQ(cwmp({download}), Lines{R"({ "status": "1" })"});
    EXPECT_EQ(box::readFile("/tmp/given").substr(0, 64),
              "0|http://a/$(b) \"c\"|3 Vendor Configuration File|8|me|s3cret\n0\n1\n");
    EXPECT_EQ(box::readFile("/tmp/given").find("23"), std::string::npos);
    EXPECT_EQ(cwmp({R"({ "command": "apply", "class": "download", "argument": "3 Vendor" })"}),
              Lines{R"({ "status": "1" })"});
    EXPECT_EQ(box::readFile("/tmp/applied"), "3 Vendor\n");
    cwmp({R"({ "command": "reboot" })"});
    EXPECT_EQ(box::readFile("/tmp/rebooted"), "yes\n");
    for (const auto& [status, code] :
         {std::pair("10", "9010"), {"11", "9011"}, {"18", "9018"}, {"1", "9010"}}) {
        placeHook("download", std::string("exit ") + status + "\n");
        EXPECT_EQ(cwmp({download}), Lines{std::string(R"({ "fault_code": ")") + code + R"(" })"});
    }
    placeHook("upload", "kill -9 $$\n");
    EXPECT_EQ(cwmp({R"({ "command": "upload" })"}), Lines{R"({ "fault_code": "9011" })"});
}

/// The hook that docs/cwmp.md shows under this name.
std::string documentedHook(const std::string& name) {
    const std::string text = box::readFile(KELM_CWMP_DOCUMENT),
                      mark = "<!-- hook " + name + " -->\n```sh\n";
    const std::size_t start = text.find(mark);
    if (start == std::string::npos) return "";
    return text.substr(start + mark.size(),
                       text.find("\n```", start + mark.size()) - start - mark.size() + 1);
}

void placeCommand(const std::string& name) {
    const std::string path = "/usr/bin/" + name;
    std::remove(path.c_str());
    box::writeFile(path, "#!/bin/sh\necho \"${0##*/} $*\" >>/tmp/commands\n");
    chmod(path.c_str(), 0755);
}

TEST_F(CwmpTest, TheDocumentedHooksDoWhatTheyShould) {
    for (const char* name : {"download", "apply", "upload", "factory_reset"})
        placeHook(name, documentedHook(name));
    for (const char* name : {"sysupgrade", "jffs2mark", "reboot"}) placeCommand(name);
    placeHook("reboot", box::readFile(KELM_CWMP_REBOOT));
    box::writeFile("/tmp/www/fw.bin", "firmware");
    box::writeFile("/tmp/www/cgi-bin/put",
                   "#!/bin/sh\ncat >/tmp/put\nprintf 'Content-Type: text/plain\\r\\n\\r\\n'\n");
    chmod("/tmp/www/cgi-bin/put", 0755);
    Child server({"/usr/host/bin/busybox", "httpd", "-f", "-p", "127.0.0.1:8099", "-h", "/tmp/www"},
                 "/tmp/httpd");
    ASSERT_TRUE(box::waitUntil(
        [] { return std::system("wget -q -O /dev/null http://127.0.0.1:8099/fw.bin") == 0; }));
    const auto transfer = [](const char* command, const char* file, const char* type,
                             const char* size) {
        const std::string line = std::string("{\"command\":\"") + command +
                                 "\",\"url\":\"http://127.0.0.1:8099/" + file +
                                 "\",\"file_type\":\"" + type + "\",\"file_size\":\"" + size +
                                 "\",\"user_name\":\"me\",\"password\":\"x\"}";
        const Lines got = cwmp({line});
        return got.size() == 1 ? memberOf(got[0], "fault_code").value_or("done") : "no line";
    };
    constexpr char kFirmware[] = "1 Firmware Upgrade Image";
    EXPECT_EQ(transfer("download", "nope.bin", kFirmware, "8"), "9010");
    EXPECT_EQ(transfer("download", "fw.bin", kFirmware, "9"), "9018");
    EXPECT_EQ(transfer("download", "fw.bin", kFirmware, "8"), "done");
    EXPECT_EQ(cwmp({cwmpApply("download", kFirmware)}), Lines{R"({ "status": "1" })"});
    EXPECT_EQ(cwmp({cwmpApply("download", "9 Other")}), Lines{R"({ "fault_code": "9010" })"});
    EXPECT_EQ(transfer("upload", "cgi-bin/put", "2 Vendor Log File", ""), "done");
    EXPECT_NE(box::readFile("/tmp/put"), "");
    EXPECT_EQ(transfer("upload", "nope", "2 Vendor Log File", ""), "9011");
    cwmp({R"({ "command": "factory_reset" })", R"({ "command": "reboot" })"});
    EXPECT_EQ(box::readFile("/tmp/commands"),
              "sysupgrade /tmp/kelm-trd-cwmp/file\njffs2mark -y\nreboot \nreboot \n");
}

TEST_F(CwmpTest, PeopleSeeWhatTheAcsWouldGet) {
    const std::string program = KELM_CWMP_PROGRAM;
    EXPECT_EQ(
        printed(program + " get value Device.DeviceInfo.Manufacturer"),
        R"({ "parameter": "Device.DeviceInfo.Manufacturer", "value": "KELM", "type": "xsd:string" })"
        "\n");
    EXPECT_NE(printed(program + " inform device_id").find("001A2B3C4D5E"), std::string::npos);
    EXPECT_NE(std::system((program + " get value Device.Nope >/dev/null").c_str()), 0);
    EXPECT_EQ(printed(program + " set value " + kHost + " 10.1.1.1"), "{ \"status\": \"1\" }\n");
    watch(kHost, "2");
    box::writeFile("/var/kelm/syslog_host", "10.0.0.1");
    const std::string seen = printed(program + " check_value_change");
    EXPECT_NE(seen.find("10.0.0.1"), std::string::npos);
    EXPECT_EQ(printed(program + " check_value_change"), seen);
    EXPECT_EQ(changes(), Lines{kHost + "=10.0.0.1"});
    EXPECT_NE(printed(program + " --help").find("Usage:"), std::string::npos);
    EXPECT_EQ(printed(program + " --version").rfind("kelm-trd-cwmp ", 0), 0U);
    EXPECT_NE(printed(program + " fly").find("Usage:"), std::string::npos);
}

/// With a small disk for the notification file.
class CwmpFullDiskTest : public CwmpTest {
  protected:
    void SetUp() override {
        // The box's own, as a clone of the repository may lie below it.
        ASSERT_EQ(std::system("mount -o remount,size=4m /tmp"), 0);
        start();
    }
};

TEST_F(CwmpFullDiskTest, AFullDiskOrAKilledBackEndLeavesTheOldFile) {
    watch(kConfig, "2");
    const std::string before = box::readFile(kFile);
    ASSERT_NE(before, "");
    box::writeFile("/var/kelm/syslog_host", "10.0.0.1");
    shell("dd if=/dev/zero of=/tmp/full bs=4096 2>/dev/null");
    EXPECT_EQ(cwmp(kCheck), Lines{});
    EXPECT_EQ(box::readFile(kFile), before);
    shell("rm /tmp/full");
    {
        box::setFault("uci", "hang");
        CwmpClient client;
        client.answers();
        box::clearCalls("uci");
        client.send(kCheck[0] + "\n");
        ASSERT_TRUE(box::waitUntil([] { return !box::calls("uci").empty(); }));
    }
    EXPECT_EQ(box::readFile(kFile), before);
    box::setFault("uci", "");
    EXPECT_EQ(changes(), Lines{kHost + "=10.0.0.1"}) << box::readFile("/tmp/cwmp-errors");
}

class CwmpStartTest : public DaemonTest {};

TEST_F(CwmpStartTest, ItWaitsForTheDaemonAndForTheDeviceIdWithoutALimit) {
    const Child::Environment impatient{
        {"KELM_CWMP_WAIT", "1"}, {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/kelm-box/late"}};
    CwmpClient session(impatient), start(impatient),
        patient(Child::Environment{{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/run/kelm-box/late"}});
    session.answers();
    patient.answers();
    // What can be had without the daemon.
    EXPECT_EQ(session.ask({cwmpGet("value", "Device.")}), Lines{fault("Device.", "9002")});
    EXPECT_EQ(session.ask(kInform).size(), 2U);
    start.answers();
    EXPECT_EQ(start.ask(kUpdate), Lines{});
    EXPECT_EQ(box::readFile(kFile), "");
    start.send(kDeviceId[0] + "\n{ \"command\": \"end\" }\n");
    EXPECT_FALSE(start.answers(std::chrono::seconds(3)).has_value());
    patient.send(kDeviceId[0] + "\n{ \"command\": \"end\" }\n");
    startBus();
    shell(("ln -s " +
           bus().address().substr(bus().address().find('/'),
                                  bus().address().find(',') - bus().address().find('/')) +
           " /run/kelm-box/late")
              .c_str());
    launch();
    const Lines identity{
        R"({ "manufacturer": "KELM", "oui": "001A2B", "product_class": "STB", "serial_number": "001A2B3C4D5E" })"};
    EXPECT_EQ(start.answers(), identity);
    EXPECT_EQ(patient.answers(), identity);
    connect();
    watch({});
    // What could not be written at the start is written with the first session.
    std::remove(kFile);
    ASSERT_EQ(
        std::system("uci -q add easycwmp notifications && uci -q add_list "
                    "easycwmp.@notifications[0].active=Device.DeviceInfo.UpTime && uci commit"),
        0);
    EXPECT_EQ(cwmp(kInform).size(), 11U);
    EXPECT_NE(box::readFile(kFile).find("UpTime"), std::string::npos);
}

TEST_F(CwmpStartTest, ABackEndWhoseClientHasGoneWaitsNoLonger) {
    CwmpClient client(
        {{"KELM_CWMP_WAIT", "0"}, {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere"}});
    client.answers();
    client.send(kDeviceId[0] + "\n");
    client.closeOutput();
    EXPECT_TRUE(client.hangUp().has_value());
}

}  // namespace
