#include "tests/support/TempFolder.h"
#include "tests/unit/cwmp/Fakes.h"

#include <gtest/gtest.h>

namespace {

using namespace cwmp;
using Lines = std::vector<std::string>;

class SessionTest : public ::testing::Test {
  protected:
    SessionTest() {
        life_.daemon.entries = {
            {"Device.A.Host", {"old", true}},
            {"Device.A.Zone", {"z\n", true}},
            {"Device.B.Rate", {"5", false, true}},
            {"Device.Services.STBService.1.ServiceMonitoring.SampleInterval", {"3", true}}};
        life_.uci.options["@acs[0].url"] = {"http://acs/"};
        testing::internal::CaptureStderr();
    }
    ~SessionTest() override { testing::internal::GetCapturedStderr(); }

    /// What the lines of one group are answered with, prompt included.
    Lines answers(const Lines& lines) {
        life_.answers.clear();
        for (const std::string& line : lines) life_.session.take(line);
        life_.session.take(R"({"command":"end"})");
        return life_.answers;
    }
    static std::string set(const std::string& parameter, const std::string& argument) {
        return jsonLine({{"command", "set"},
                         {"class", "value"},
                         {"parameter", parameter},
                         {"argument", argument}});
    }
    static std::string apply() { return R"({"command":"apply","class":"value","argument":"key"})"; }
    static Lines fault(const std::string& code, const std::string& parameter = "") {
        const std::string named = parameter.empty() ? "" : "\"parameter\": \"" + parameter + "\", ";
        return {"{ " + named + "\"fault_code\": \"" + code + "\" }", "easycwmp>"};
    }
    std::string host() { return life_.daemon.entries.at("Device.A.Host").value; }

    const TempFolder folder_;
    FakeLife life_{folder_.path("rows")};
};

constexpr char kInterval[] = "Device.Services.STBService.1.ServiceMonitoring.SampleInterval";

TEST_F(SessionTest, ALineThatIsNotUnderstoodIsAnInvalidArgument) {
    for (const std::string line :
         {"x", "{", "[]", "null", "{}", R"({"command":"fly"})", R"({"command":"get"})",
          R"({"command":"get","class":"values"})", R"({"command":"get","class":"value"})",
          R"({"command":"get","class":"name","parameter":"Device."})",
          R"({"command":"get","class":"value","parameter":7})", R"({"command":"download"})", "\xFF",
          R"({"command":"get","class":"notification"})"})
        EXPECT_EQ(answers({line}).back(), "easycwmp>") << line;
    EXPECT_EQ(answers({"x"}), fault("9003"));
    EXPECT_EQ(answers({std::string(1 << 20, 'x')}), fault("9003"));
    EXPECT_EQ(answers({R"({"command":"get","class":"value"})"}), fault("9003"));
    EXPECT_EQ(answers({"", " \t\r"}), Lines{"easycwmp>"});
}

TEST_F(SessionTest, NothingIsWrittenWhenALineOfTheGroupWasNotUnderstood) {
    EXPECT_EQ(answers({set("Device.A.Host", "new"), "{\"command\":\"set\",\"cla", apply()}).at(1),
              fault("9003").front());
    EXPECT_EQ(answers({R"({"command":"set","class":"value","argument":"x"})", apply()}),
              fault("9003"));
    EXPECT_TRUE(life_.daemon.written.empty());
    EXPECT_EQ(answers({set("Device.A.Host", "new"), apply()}),
              (Lines{R"({ "status": "1" })", "easycwmp>"}));
}

TEST_F(SessionTest, WhatWasNotAppliedIsForgottenWithItsGroup) {
    answers({set("Device.A.Host", "new")});
    EXPECT_EQ(answers({apply()}), (Lines{R"({ "status": "1" })", "easycwmp>"}));
    EXPECT_EQ(host(), "old");
}

TEST_F(SessionTest, EachBadSetHasAFaultAndNothingIsWritten) {
    EXPECT_EQ(
        answers({set("Device.A.Host", "new"), set("Device.B.Rate", "6"), set("Device.Nope", ""),
                 set(kInterval, "-1"), set("Device.A.Zone", "\x01"), set("Device.A.", "x"),
                 R"({"command":"set","class":"value","parameter":"Device.A.Host"})",
                 set("Device.ManagementServer.URL", "nonsense"), apply()}),
        (Lines{
            R"({ "parameter": "Device.B.Rate", "fault_code": "9008" })",
            R"({ "parameter": "Device.Nope", "fault_code": "9005" })",
            R"({ "parameter": "Device.Services.STBService.1.ServiceMonitoring.SampleInterval", "fault_code": "9007" })",
            R"({ "parameter": "Device.A.Zone", "fault_code": "9007" })",
            R"({ "parameter": "Device.A.", "fault_code": "9005" })",
            R"({ "parameter": "Device.A.Host", "fault_code": "9003" })",
            R"({ "parameter": "Device.ManagementServer.URL", "fault_code": "9007" })",
            "easycwmp>"}));
    EXPECT_TRUE(life_.daemon.written.empty());
    EXPECT_TRUE(life_.uci.calls.empty());
}

TEST_F(SessionTest, WhatDoesNotTakePutsEverythingBack) {
    life_.uci.commits = false;
    EXPECT_EQ(answers({set("Device.A.Host", "new"), set("Device.A.Host", "newer"), apply()}),
              fault("9002"));
    EXPECT_EQ(host(), "old");
    EXPECT_EQ(life_.uci.calls.back(), "revert");
    life_.uci.commits = true;
    life_.daemon.takes = false;
    EXPECT_EQ(answers({set("Device.A.Host", "new"), apply()}), fault("9002", "Device.A.Host"));
    EXPECT_EQ(answers({set(kInterval, "9"), apply()}), fault("9007", kInterval));
}

TEST_F(SessionTest, NumbersAreSentAndComparedAsNumbers) {
    EXPECT_EQ(answers({set(kInterval, "007"), apply()}).front(), R"({ "status": "1" })");
    EXPECT_EQ(life_.daemon.entries.at(kInterval).value, "7");
}

TEST_F(SessionTest, TheClientReadsItsSettingsAgainOnlyWhenTheyHaveChanged) {
    const std::string name = "Device.ManagementServer.PeriodicInformInterval";
    const std::string reload = R"({ "status": "1", "config_load": "1" })";
    EXPECT_EQ(answers({set(name, "600"), apply()}).front(), reload);
    EXPECT_EQ(answers({set(name, "0600"), apply()}).front(), R"({ "status": "1" })");
    EXPECT_EQ(answers({set(name, "0"), apply()}), fault("9007", name));
    EXPECT_EQ(life_.uci.options.at("@acs[0].parameter_key"), Lines{"key"});
}

TEST_F(SessionTest, ADaemonThatGoesInTheMiddleLeavesAFaultOnTheLastLine) {
    for (int calls = 0; calls < 5; ++calls) {
        life_.daemon.callsUntilLost = calls;
        const Lines got = answers({R"({"command":"get","class":"value","parameter":"Device."})"});
        ASSERT_GE(got.size(), 2U);
        EXPECT_EQ(got[got.size() - 2], fault("9002", "Device.").front()) << calls;
    }
    // It is asked again with the next group.
    life_.daemon.callsUntilLost = -1;
    EXPECT_EQ(answers({R"({"command":"get","class":"value","parameter":"Device.B.Rate"})"}).front(),
              R"({ "parameter": "Device.B.Rate", "value": "5", "type": "xsd:string" })");
}

TEST_F(SessionTest, NamesThatXmlForbidsAreNotInTheTree) {
    life_.daemon.entries["Device.A.\x01"] = {"x", true, true};
    EXPECT_EQ(answers({R"({"command":"get","class":"value","parameter":"Device.A."})"}).size(), 3U);
    const std::string name(5000, 'x');
    EXPECT_LT(answers({jsonLine({{"command", "get"}, {"class", "value"}, {"parameter", name}})})[0]
                  .size(),
              1100U);
}

TEST_F(SessionTest, ALostDaemonIsNotAskedAgainInTheSameGroup) {
    life_.daemon.callsUntilLost = 0;
    const std::string get = R"({"command":"get","class":"value","parameter":"Device.B.Rate"})";
    life_.answers.clear();
    life_.session.take(get);
    life_.daemon.callsUntilLost = -1;
    life_.session.take(get);
    EXPECT_EQ(life_.answers.back(), fault("9002", "Device.B.Rate").front());
}

TEST_F(SessionTest, TheClientsOwnBranchNeedsNoDaemon) {
    life_.daemon.callsUntilLost = 0;
    EXPECT_EQ(
        answers({R"({"command":"get","class":"value","parameter":"Device.ManagementServer.URL"})"})
            .front(),
        R"({ "parameter": "Device.ManagementServer.URL", "value": "http:\/\/acs\/", "type": "xsd:string" })");
    EXPECT_EQ(answers({R"({"command":"inform","class":"parameter"})"}).size(), 3U);
}

TEST_F(SessionTest, AnInformThatHasNothingAtAllIsAFault) {
    life_.daemon.callsUntilLost = 0;
    life_.uci.works = false;
    EXPECT_EQ(answers({R"({"command":"inform","class":"parameter"})"}).at(0).find("9002") !=
                  std::string::npos,
              true);
}

TEST_F(SessionTest, AnIdentityThatIsNotCompleteIsWaitedFor) {
    for (const char* name : {"Manufacturer", "ManufacturerOUI", "ProductClass"})
        life_.daemon.entries[std::string("Device.DeviceInfo.") + name].value = "x\x01";
    life_.daemon.entries["Device.DeviceInfo.SerialNumber"].value = "";
    // Pauses of a fifth of a second, two minutes of them.
    life_.patience = 600;
    EXPECT_EQ(answers({R"({"command":"inform","class":"device_id"})"}), Lines{"easycwmp>"});
    EXPECT_LT(life_.patience, 0);
    const std::string log = testing::internal::GetCapturedStderr();
    testing::internal::CaptureStderr();  // for the fixture
    std::size_t lines = 0;
    for (std::size_t at = 0; (at = log.find("no device id", at)) != std::string::npos; ++at)
        ++lines;
    EXPECT_EQ(lines, 3U) << "at the start and after each minute\n" << log;
}

TEST_F(SessionTest, AttributesAreStoredAsListsWithoutAReload) {
    const auto attribute = [](const char* name, const char* value) {
        return jsonLine({{"command", "set"},
                         {"class", "notification"},
                         {"parameter", name},
                         {"argument", value}});
    };
    const std::string applied = R"({"command":"apply","class":"notification"})";
    EXPECT_EQ(answers({attribute("Device.A.", "2"), attribute("Device.A.Zone", "0"), applied}),
              (Lines{R"({ "status": "0" })", "easycwmp>"}));
    EXPECT_EQ(life_.uci.calls, (Lines{"add_list @notifications[0].active=Device.A.",
                                      "add_list @notifications[0].none=Device.A.Zone", "commit"}));
    EXPECT_EQ(answers({R"({"command":"get","class":"notification","parameter":"Device.A."})"}),
              (Lines{R"({ "parameter": "Device.A.Host", "notification": "2" })",
                     R"({ "parameter": "Device.A.Zone", "notification": "0" })", "easycwmp>"}));
    EXPECT_EQ(answers({attribute("Device.A", "2"), attribute("Device.A.", "3"), applied}).size(),
              3U);
    life_.uci.works = false;
    EXPECT_EQ(answers({attribute("Device.A.", "1"), applied}), fault("9002"));
}

TEST_F(SessionTest, AChangeIsReportedOnceWhateverHappensInBetween) {
    const std::string check = R"({"command":"check_value_change"})";
    const std::string update = R"({"command":"update_value_change"})";
    life_.uci.options["@notifications[0].passive"] = {"Device.A."};
    answers({update});
    EXPECT_EQ(answers({check}), Lines{"easycwmp>"});
    life_.daemon.entries["Device.A.Host"].value = "\",\"value\":null,\"x\":\"";
    answers({update});  // as when the client starts again
    const Lines changed{
        R"({ "parameter": "Device.A.Host", "value": "\",\"value\":null,\"x\":\"", "notification": "1", "type": "xsd:string" })",
        "easycwmp>"};
    life_.daemon.callsUntilLost = 2;
    EXPECT_EQ(answers({check}), Lines{"easycwmp>"});
    life_.daemon.callsUntilLost = -1;
    EXPECT_EQ(answers({check}), changed);
    EXPECT_EQ(answers({check}), Lines{"easycwmp>"});
    answers({set("Device.A.Host", "by the ACS"), apply()});
    EXPECT_EQ(answers({check}), Lines{"easycwmp>"});
}

TEST_F(SessionTest, WithoutUciAChangeWaits) {
    const std::string check = R"({"command":"check_value_change"})";
    life_.uci.options["@notifications[0].active"] = {"Device.B.Rate"};
    answers({R"({"command":"update_value_change"})"});
    life_.daemon.entries["Device.B.Rate"].value = "6";
    life_.uci.works = false;
    EXPECT_EQ(answers({check}), Lines{"easycwmp>"});
    life_.uci.works = true;
    EXPECT_EQ(answers({check}).size(), 2U);
}

TEST_F(SessionTest, TransfersAreTheHooksWork) {
    const std::string download =
        R"({"command":"download","url":"http:\/\/a\/b","file_type":"1 Firmware",)"
        R"("file_size":"8","user_name":"u","password":"p"})";
    EXPECT_EQ(answers({download}), (Lines{R"({ "status": "1" })", "easycwmp>"}));
    EXPECT_EQ(life_.hooks.given.at(1),
              (std::pair<std::string, std::string>("KELM_CWMP_URL", "http://a/b")));
    life_.hooks.result = FaultCode::FileCorrupted;
    EXPECT_EQ(answers({R"({"command":"apply","class":"download","argument":"1 Firmware"})"}),
              fault("9018"));
    EXPECT_EQ(answers({R"({"command":"reboot"})", R"({"command":"factory_reset"})"}),
              Lines{"easycwmp>"});
    EXPECT_EQ(life_.hooks.ran, (Lines{"download", "apply", "reboot", "factory_reset"}));
    EXPECT_EQ(answers({R"({"command":"download","url":"a\u0000b"})"}), fault("9003"));
}

TEST_F(SessionTest, ObjectsCannotBeAddedOrDeleted) {
    EXPECT_EQ(answers({R"({"command":"add","class":"object","parameter":"Device.A."})"}),
              fault("9005"));
    EXPECT_EQ(answers({R"({"command":"delete","class":"object","parameter":"Device.A.1."})"}),
              fault("9005"));
    EXPECT_EQ(answers({R"({"command":"apply","class":"object","argument":"k"})"}),
              Lines{"easycwmp>"});
}

}  // namespace
