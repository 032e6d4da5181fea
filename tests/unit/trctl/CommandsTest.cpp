#include "tests/unit/trctl/CommandsTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using namespace trctl;

TEST_F(CommandsTest, GetPrintsAParameterAnObjectOrAPattern) {
    EXPECT_EQ(run("get", {"D.A.Rate"}), kDone);
    EXPECT_EQ(output_, "D.A.Rate = 5\n");
    EXPECT_EQ(run("get", {"D."}), kDone);
    EXPECT_EQ(output_, "D.A.Mode = auto\nD.A.Rate = 5\nD.Name = box\\x1b\n");
    EXPECT_EQ(run("get", {"**e"}), kDone);
    EXPECT_EQ(output_, "D.A.Mode = auto\nD.A.Rate = 5\nD.Name = box\\x1b\n");
}

TEST_F(CommandsTest, GetReportsWhatItDidNotFindAndPrintsTheRest) {
    EXPECT_EQ(run("get", {"D.Nope", "D.A.Rate", "x*", "D.A", "D.B."}), kRefused);
    EXPECT_EQ(output_, "D.A.Rate = 5\n");
    EXPECT_EQ(errors_,
              "trctl: there is no D.Nope\ntrctl: nothing matches x*\n"
              "trctl: D.A is an object; for everything beneath it write D.A.\n"
              "trctl: there is no D.B.\n");
}

TEST_F(CommandsTest, AnObjectWithNothingBeneathIsNotAnError) {
    EXPECT_EQ(run("get", {"D.Empty."}), kDone);
    EXPECT_EQ(output_ + errors_, "");
}

TEST_F(CommandsTest, AValueThatTheDaemonRefusesDoesNotHideTheOthers) {
    daemon_.refused["D.A.Mode"] = true;
    EXPECT_EQ(run("get", {"D.A."}), kRefused);
    EXPECT_EQ(output_, "D.A.Rate = 5\n");
    EXPECT_EQ(errors_, "trctl: D.A.Mode: too large\n");
}

TEST_F(CommandsTest, GetAsJsonHasRawValuesAsEscapes) {
    options_.json = true;
    EXPECT_EQ(run("get", {"D.Name"}), kDone);
    EXPECT_EQ(output_, "{\n  \"D.Name\": \"box\\u001b\"\n}\n");
}

TEST_F(CommandsTest, GetPrintsValuesAloneAsTheyAre) {
    options_.valueOnly = true;
    daemon_.entries["D.A.Mode"].value = "a\nb\\";
    EXPECT_EQ(run("get", {"D.A.", "D.Name"}), kDone);
    EXPECT_EQ(output_, "a\nb\\\n5\nbox\x1b\n");
    options_.endWithNul = true;
    EXPECT_EQ(run("get", {"D.A."}), kDone);
    EXPECT_EQ(output_, std::string("a\nb\\\0"
                                   "5\0",
                                   7));
}

TEST_F(CommandsTest, SetPrintsWhatTheParameterReadsAsAfterwards) {
    EXPECT_EQ(set("D.A.Mode", "off"), kDone);
    EXPECT_EQ(output_, "D.A.Mode = off\n");
    EXPECT_EQ(errors_, "");
}

TEST_F(CommandsTest, SetPrintsWhyItDoesNotWrite) {
    EXPECT_EQ(set("D.A.Rate", "6"), kRefused);
    EXPECT_EQ(errors_, "trctl: D.A.Rate is read-only\n");
    EXPECT_EQ(set("D.Nope", "6"), kRefused);
    EXPECT_EQ(errors_, "trctl: there is no parameter D.Nope\n");
    EXPECT_EQ(set("D.A.", "6"), kRefused);
    EXPECT_EQ(errors_, "trctl: D.A. is an object, not a parameter\n");
    EXPECT_EQ(set("D.A", "6"), kRefused);
    EXPECT_EQ(set("*Mode", "6"), kRefused);
    EXPECT_EQ(daemon_.entries["D.A.Mode"].value, "auto");
}

TEST_F(CommandsTest, SetReportsATextThatDoesNotConvert) {
    daemon_.onSet = [](auto&, const auto&) { throw client::Refused("Logic error"); };
    EXPECT_EQ(set("D.A.Mode", "x"), kRefused);
    EXPECT_EQ(errors_, "trctl: D.A.Mode does not take this value: it is not a number\n");
}

TEST_F(CommandsTest, SetReportsAValueThatWasNotTaken) {
    daemon_.onSet = [](auto&, const auto&) {};
    EXPECT_EQ(set("D.A.Mode", "x"), kRefused);
    EXPECT_EQ(output_, "D.A.Mode = auto\n");
    EXPECT_NE(errors_.find("did not take"), std::string::npos);
}

TEST_F(CommandsTest, AValueThatIsTooLargeToReadCanBeReplaced) {
    daemon_.refused["D.A.Mode"] = true;
    daemon_.onSet = [this](auto& entry, const auto& value) {
        daemon_.refused.clear();
        entry.value = value;
    };
    EXPECT_EQ(set("D.A.Mode", "off"), kDone);
    EXPECT_EQ(output_, "D.A.Mode = off\n");
}

TEST_F(CommandsTest, ListPrintsAddressesOrOneLevelOfThem) {
    EXPECT_EQ(run("list", {"D."}), kDone);
    EXPECT_EQ(output_, "D.A.\nD.A.Mode\nD.A.Rate\nD.Empty.\nD.Name\n");
    options_.level = true;
    EXPECT_EQ(run("list", {"D."}), kDone);
    EXPECT_EQ(output_, "D.A.\nD.Empty.\nD.Name\n");
    EXPECT_EQ(run("list", {"**Rate", "D.A."}), kDone);
    EXPECT_EQ(output_, "D.A.Rate\nD.A.Mode\nD.A.Rate\n");
    options_.parametersOnly = true;
    EXPECT_EQ(run("list", {"D."}), kDone);
    EXPECT_EQ(output_, "D.Name\n");
    options_.level = false;
    EXPECT_EQ(run("list"), kDone);
    EXPECT_EQ(output_, "D.A.Mode\nD.A.Rate\nD.Name\n");
}

TEST_F(CommandsTest, OneLevelBeneathAPatternsObjectsIsListed) {
    options_.level = true;
    EXPECT_EQ(run("list", {"D.*."}), kDone);
    EXPECT_EQ(output_, "D.A.Mode\nD.A.Rate\n");
    EXPECT_EQ(run("list", {"D.?"}), kDone);
    EXPECT_EQ(output_, "D.A.\n");
    EXPECT_EQ(run("list", {"D.E*."}), kDone);
    EXPECT_EQ(output_ + errors_, "");
    EXPECT_EQ(run("list", {"*.*.*."}), kRefused);
    EXPECT_EQ(errors_, "trctl: nothing matches *.*.*.\n");
}

TEST_F(CommandsTest, APatternThatNamesOnlyObjectsIsNotEnoughForGet) {
    EXPECT_EQ(run("get", {"D.[AE]*"}), kRefused);
    EXPECT_EQ(errors_,
              "trctl: D.[AE]* names only objects; for everything beneath them write D.[AE]*.\n");
    EXPECT_EQ(run("list", {"D.[AE]*"}), kDone);
    EXPECT_EQ(output_, "D.A.\nD.Empty.\n");
}

TEST_F(CommandsTest, ALongListHasFlagsTypeAndValue) {
    options_.isLong = true;
    daemon_.entries["D.Name"] = {"12 b\x1b", false, true};
    daemon_.entries["D.Void"] = {"", true, true};
    EXPECT_EQ(run("list", {"D."}), kDone);
    EXPECT_EQ(output_,
              "D.A. -- object\nD.A.Mode w- string auto\nD.A.Rate -- integer 5\n"
              "D.Empty. -- object\nD.Name -i string 12 b\\x1b\nD.Void wi string\n");
    for (const char* text : {"-7", "0", "9223372036854775807"}) {
        daemon_.entries["D.A.Rate"].value = text;
        run("list", {"D.A.Rate"});
        EXPECT_EQ(output_, std::string("D.A.Rate -- integer ") + text + "\n");
    }
    for (const char* text : {"+7", "007", "1, 2", "9223372036854775808", "5 "}) {
        daemon_.entries["D.A.Rate"].value = text;
        run("list", {"D.A.Rate"});
        EXPECT_EQ(output_, std::string("D.A.Rate -- string ") + text + "\n");
    }
}

TEST_F(CommandsTest, ALongListLeavesOutAValueThatTheDaemonRefuses) {
    options_.isLong = true;
    daemon_.refused["D.A.Mode"] = true;
    EXPECT_EQ(run("list", {"D.A."}), kRefused);
    EXPECT_EQ(output_, "D.A.Rate -- integer 5\n");
    EXPECT_EQ(errors_, "trctl: D.A.Mode: too large\n");
}

TEST_F(CommandsTest, WaitEndsWithTheFirstCycle) {
    int looks = 0;
    daemon_.onList = [&] {
        if (++looks == 1) throw client::NoDaemon("there is no kelm-trd", "");
        if (looks == 3) daemon_.entries["Device.DeviceInfo.DeviceLog"] = {""};
    };
    EXPECT_EQ(run("wait"), kDone);
    EXPECT_EQ(looks, 3);
    EXPECT_EQ(output_ + errors_, "");
}

TEST_F(CommandsTest, WaitHasATimeLimit) {
    options_.timeoutSeconds = 0;
    EXPECT_EQ(run("wait"), kRefused);
    EXPECT_EQ(errors_, "trctl: the first cycle is not over after 0 s\n");
}

TEST_F(CommandsTest, WaitEndsWhenTheParameterHasTheValue) {
    int looks = 0;
    daemon_.onValue = [&] {
        if (++looks == 1) throw client::NoDaemon("there is no kelm-trd", "");
        if (looks == 3) daemon_.entries["D.A.Mode"].value = "of=f\n";
    };
    EXPECT_EQ(run("wait", {"D.A.Mode=of=f"}), kDone);
    EXPECT_EQ(looks, 3);
    EXPECT_EQ(output_ + errors_, "");
}

TEST_F(CommandsTest, WaitForAValueHasATimeLimit) {
    options_.timeoutSeconds = 0;
    EXPECT_EQ(run("wait", {"D.A.Mode=aut"}), kRefused);
    EXPECT_EQ(errors_, "trctl: D.A.Mode has the value \"auto\" after 0 s\n");
    EXPECT_EQ(run("wait", {"D.Nope="}), kRefused);
    EXPECT_EQ(errors_, "trctl: there is no D.Nope after 0 s\n");
    EXPECT_EQ(daemon_.entries.count("D.Nope"), 0U);
    daemon_.onValue = [] { throw client::NoDaemon("there is no kelm-trd", ""); };
    EXPECT_THROW(run("wait", {"D.Nope="}), client::NoDaemon);
    testing::internal::GetCapturedStdout();
    testing::internal::GetCapturedStderr();
}

TEST_F(CommandsTest, WaitForTheEmptyTextNeedsTheParameter) {
    int looks = 0;
    daemon_.onList = [&] {
        if (++looks == 2) daemon_.entries["D.Void"] = {""};
    };
    EXPECT_EQ(run("wait", {"D.Void="}), kDone);
    EXPECT_EQ(looks, 2);
}

TEST_F(CommandsTest, TreeShowsEmptyObjectsAndWhatAPatternLeaves) {
    EXPECT_EQ(run("tree"), kDone);
    EXPECT_NE(output_.find("Empty.\n"), std::string::npos);
    EXPECT_EQ(run("tree", {"**Rate"}), kDone);
    EXPECT_EQ(std::count(output_.begin(), output_.end(), '\n'), 3);
}

TEST_F(CommandsTest, ATreeHasTheLevelsThatAreAskedFor) {
    options_.ascii = true;
    options_.depth = 1;
    EXPECT_EQ(run("tree"), kDone);
    EXPECT_EQ(output_, "D.\n");
    daemon_.calls = 0;
    EXPECT_EQ(run("tree", {"D."}), kDone);
    EXPECT_EQ(output_, "D.\n|-- A.\n|-- Empty.\n`-- Name = box\\x1b\n");
    EXPECT_EQ(daemon_.calls, 2U) << "only what is drawn is read";
    options_.depth = 2;
    EXPECT_EQ(run("tree"), kDone);
    EXPECT_EQ(output_, "D.\n|-- A.\n|-- Empty.\n`-- Name = box\\x1b\n");
    EXPECT_EQ(run("tree", {"**.Rate"}), kDone);
    EXPECT_EQ(output_, "D.\n`-- A.\n");
    options_.depth = 1;
    daemon_.entries["D.A.B.C"] = {"1"};
    EXPECT_EQ(run("tree", {"D.A.B.", "D.A."}), kDone);
    EXPECT_EQ(output_,
              "D.\n`-- A.\n    |-- B.\n    |   `-- C = 1\n    |-- Mode = auto\n"
              "    `-- Rate = 5\n");
}

TEST_F(CommandsTest, InfoPrintsTheSettings) {
    EXPECT_EQ(run("info", {"D.A.Mode", "D.Empty."}), kDone);
    EXPECT_EQ(output_,
              "address        D.A.Mode\nkind           parameter\ntype           string\n"
              "value          auto\nwritable       yes\nforced inform  no\n"
              "source         unknown\nmeaning        unknown\nwatched        unknown\n\n"
              "address        D.Empty.\nkind           object\n"
              "writable       no\nforced inform  no\nmeaning        unknown\n");
}

TEST_F(CommandsTest, InfoPrintsWhatTheDocumentOfTheParametersStates) {
    daemon_.entries = {{"Device.DeviceInfo.UpTime", {"12"}}, {"Device.IP.", {}}};
    EXPECT_EQ(run("info", {"Device.DeviceInfo.UpTime", "Device.IP."}), kDone);
    EXPECT_NE(output_.find("type           integer\nvalue          12\n"), std::string::npos);
    EXPECT_NE(output_.find("source         file /proc/uptime\nunit           seconds\n"
                           "meaning        since the box booted\n"),
              std::string::npos)
        << output_;
    EXPECT_NE(output_.find("forced inform  no\nmeaning        the network layer\n"),
              std::string::npos)
        << output_;
}

TEST_F(CommandsTest, InfoAsJsonIsAnObjectALine) {
    options_.json = true;
    daemon_.entries = {{"D.Name", {"\x1b\"", true}},
                       {"Device.DeviceInfo.UpTime", {"12", false, true}},
                       {"Device.IP.", {}}};
    EXPECT_EQ(run("info", {"D.Name", "Device.DeviceInfo.UpTime", "Device.IP."}), kDone);
    EXPECT_EQ(output_,
              R"({ "address": "D.Name", "kind": "parameter", "type": "string", )"
              R"("value": "\u001b\"", "writable": true, "forcedInform": false, "source": null, )"
              R"("unit": null, "meaning": null, "watched": null })"
              "\n"
              R"({ "address": "Device.DeviceInfo.UpTime", "kind": "parameter", )"
              R"("type": "integer", "value": "12", "writable": false, "forcedInform": true, )"
              R"("source": "file /proc/uptime", "unit": "seconds", )"
              R"("meaning": "since the box booted", "watched": null })"
              "\n"
              R"({ "address": "Device.IP.", "kind": "object", "type": "object", "value": null, )"
              R"("writable": false, "forcedInform": false, "source": "", "unit": "", )"
              R"("meaning": "the network layer", "watched": false })"
              "\n");
}

TEST_F(CommandsTest, WatchLeavesOutWhatIsExcepted) {
    options_.intervalSeconds = 0.001;
    options_.count = 2;
    options_.except = {"D.A.", "D.Nope"};
    daemon_.entries["D.UpTime"] = {"1"};
    daemon_.entries["D.Up"] = {"1"};
    daemon_.onList = [this] {
        for (auto& [address, entry] : daemon_.entries) entry.value += "1";
    };
    EXPECT_EQ(run("watch"), kDone);
    EXPECT_NE(output_.find(" D.Name: "), std::string::npos) << output_;
    EXPECT_NE(output_.find(" D.Up: "), std::string::npos) << output_;
    EXPECT_EQ(std::count(output_.begin(), output_.end(), '\n'), 3) << "the date and two changes";
    options_.noClocks = true;
    options_.count = 5;
    EXPECT_EQ(run("watch"), kDone);
    EXPECT_EQ(output_.find("D.A."), std::string::npos) << output_;
    EXPECT_EQ(output_.find("UpTime"), std::string::npos) << output_;
}

TEST_F(CommandsTest, NoClocksHidesWhatOnlyCountsTime) {
    options_.intervalSeconds = 0.001;
    options_.once = true;
    options_.noClocks = true;
    daemon_.entries.clear();
    for (const char* name : {"UpTime", "I.LastChange", "T.ResetTime", "ReportEndTime", "UpTimes"})
        daemon_.entries[name] = {"1"};
    daemon_.onList = [this] {
        for (auto& [address, entry] : daemon_.entries) entry.value += "1";
    };
    EXPECT_EQ(run("watch"), kDone);
    EXPECT_NE(output_.find(" ReportEndTime: "), std::string::npos);
    EXPECT_NE(output_.find(" UpTimes: "), std::string::npos);
    EXPECT_EQ(std::count(output_.begin(), output_.end(), '\n'), 3) << output_;
}

TEST_F(CommandsTest, WatchRefusesWhatLeavesItNothingToDo) {
    options_.except = {"D."};
    EXPECT_EQ(run("watch"), kRefused);
    EXPECT_EQ(errors_, "trctl: --except and --no-clocks leave nothing to watch\n");
    options_.except = {};
    options_.rate = true;
    EXPECT_EQ(run("watch"), kRefused);
    EXPECT_EQ(errors_,
              "trctl: --rate needs a counter: a parameter of an object whose name ends with "
              "Stats\n");
}

TEST_F(CommandsTest, ChangesMarksLinesThatTheClientWouldDrop) {
    const std::string good = R"({ "parameter": "a", "value": "1", "notification": "2" })";
    daemon_.pending = good + "\n";
    EXPECT_EQ(run("changes"), kDone);
    EXPECT_EQ(output_, good + "\n");
    daemon_.pending = good + "\n{ \"parameter\": \"a\x1b\n" + good;
    EXPECT_EQ(run("changes"), kRefused);
    EXPECT_EQ(output_.find("bad ("), good.size() + 1);
    EXPECT_EQ(output_.find('\x1b'), std::string::npos);
    daemon_.pending = "";
    EXPECT_EQ(run("changes"), kDone);
    EXPECT_EQ(output_, "");
}

TEST_F(CommandsTest, ChangesEscapesTheControlCharactersOfAGoodLine) {
    daemon_.pending =
        "{ \"parameter\": \"a\", \"value\": \"\x1b]0;x\x07\r\", \"notification\": \"2\" }\n";
    EXPECT_EQ(run("changes"), kDone);
    EXPECT_NE(output_.find(R"("value": "\u001b]0;x\u0007\u000d")"), std::string::npos) << output_;
    EXPECT_EQ(output_.find('\x1b'), std::string::npos);
}

TEST_F(CommandsTest, DiffComparesThePartThatWasSaved) {
    const auto diff = [this](const std::string& json, const Addresses& paths = {}) {
        save(json);
        daemon_.calls = 0;
        return run("diff", paths);
    };
    EXPECT_EQ(diff(R"({"D.A.Rate": "5"})"), kDone);
    EXPECT_EQ(daemon_.calls, 2U) << "only what is compared is read";
    EXPECT_EQ(diff(R"({"D.A.Rate": "5", "D.A.Mode": "auto"})"), kDone);
    EXPECT_EQ(output_ + errors_, "");
    EXPECT_EQ(diff(R"({"D.A.Rate": "5", "D.Name": "x"})"), kRefused);
    EXPECT_EQ(output_, "- D.Name = x\n+ D.Name = box\\x1b\n");
    daemon_.entries["D.A.New"] = {"1"};
    EXPECT_EQ(diff(R"({"D.A.Rate": "5", "D.A.Mode": "auto"})"), kRefused);
    EXPECT_EQ(output_, "+ D.A.New = 1\n");
    EXPECT_EQ(diff(R"({"D.A.Rate": "5"})", {"D.A."}), kRefused);
    EXPECT_EQ(output_, "+ D.A.Mode = auto\n+ D.A.New = 1\n");
}

TEST_F(CommandsTest, AValueThatTheDaemonRefusesDoesNotHideTheRestOfADiff) {
    save(R"({"D.A.Mode": "x", "D.A.Rate": "6"})");
    daemon_.refused["D.A.Mode"] = true;
    EXPECT_EQ(run("diff"), kRefused);
    EXPECT_EQ(output_, "- D.A.Rate = 6\n+ D.A.Rate = 5\n");
    EXPECT_EQ(errors_, "trctl: D.A.Mode: too large\n");
}

TEST_F(CommandsTest, NoQueryAddsAnAddress) {
    const auto before = daemon_.addresses();
    const Addresses odd = {"D.Nope", "D.Nope.", "Nope*", "", ".", "D.A", "D.A.Rate.", "[", "\xff"};
    for (const char* command : {"get", "list", "tree", "info", "watch"})
        EXPECT_EQ(run(command, odd), kRefused) << command;
    for (const std::string& path : odd) EXPECT_EQ(set(path, "1"), kRefused) << path;
    options_.file = "/dev/null";
    EXPECT_EQ(run("diff", odd), kUsage);
    EXPECT_EQ(daemon_.addresses(), before);
}

TEST_F(CommandsTest, TenThousandParametersCostAListAndACallEach) {
    fill();
    daemon_.calls = 0;
    EXPECT_EQ(run("get", {"B."}), kDone);
    EXPECT_EQ(daemon_.calls, 10'001U);
    daemon_.calls = 0;
    EXPECT_EQ(run("tree", {"B."}), kDone);
    EXPECT_EQ(daemon_.calls, 10'001U);
    daemon_.calls = 0;
    EXPECT_EQ(run("list", {"B."}), kDone);
    EXPECT_EQ(daemon_.calls, 1U);
}

TEST_F(CommandsTest, OneParameterAmongManyCostsAsManyCallsAsAmongFew) {
    fill();
    daemon_.calls = 0;
    EXPECT_EQ(run("get", {"D.A.Rate"}), kDone);
    EXPECT_EQ(daemon_.calls, 2U);
    daemon_.calls = 0;
    EXPECT_EQ(set("D.A.Mode", "off"), kDone);
    EXPECT_EQ(daemon_.calls, 5U);
    daemon_.calls = 0;
    EXPECT_EQ(run("info", {"D.A.Rate"}), kDone);
    EXPECT_EQ(daemon_.calls, 4U);
}

}  // namespace
