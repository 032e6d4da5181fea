#include "tests/unit/trctl/CommandsTest.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace trctl;

/// `set` of several parameters, and `restore`, of which D.A.Mode, D.B and D.C are writable.
class SetTest : public CommandsTest {
  protected:
    SetTest() {
        daemon_.entries["D.B"] = {"1", true};
        daemon_.entries["D.C"] = {"2", true};
        daemon_.onSet = [this](Daemon::Entry& entry, const std::string& value) {
            entry.value = value;
            writes_.push_back(value);
        };
    }
    using Daemon = FakeDaemon;

    int setAll(std::vector<Assignment> assignments) {
        options_.assignments = std::move(assignments);
        return run("set");
    }
    int restore(const std::string& json, const Addresses& paths = {}) {
        save(json);
        return run("restore", paths);
    }

    std::vector<std::string> writes_;
};

TEST_F(SetTest, SeveralParametersAreWrittenInOrder) {
    EXPECT_EQ(setAll({{"D.C", "x"}, {"D.B", "y"}}), kDone);
    EXPECT_EQ(output_, "D.C = x\nD.B = y\n");
    EXPECT_EQ(writes_, (std::vector<std::string>{"x", "y"}));
}

TEST_F(SetTest, NothingIsWrittenUnlessAllCanBe) {
    const std::vector<std::pair<Assignment, std::string>> bad = {
        {{"D.Name", "x"}, "D.Name is read-only"},
        {{"D.Nope", "x"}, "there is no parameter D.Nope"},
        {{"D.A.", "x"}, "D.A. is an object, not a parameter"},
        {{"D.A.Mode", "\xff"}, "it is not valid UTF-8, or it holds a NUL"},
        {{"D.A.Mode", std::string(1, '\0')}, "it is not valid UTF-8, or it holds a NUL"}};
    for (const auto& [assignment, complaint] : bad) {
        EXPECT_EQ(setAll({{"D.B", "x"}, assignment, {"D.C", "y"}}), kRefused);
        EXPECT_NE(errors_.find(complaint), std::string::npos) << errors_;
        EXPECT_EQ(output_, "");
    }
    EXPECT_TRUE(writes_.empty());
}

TEST_F(SetTest, EveryReasonNotToWriteIsPrinted) {
    EXPECT_EQ(setAll({{"D.Name", "x"}, {"D.Nope", "x"}}), kRefused);
    EXPECT_EQ(errors_, "trctl: D.Name is read-only\ntrctl: there is no parameter D.Nope\n");
}

TEST_F(SetTest, OneThatDoesNotTakeDoesNotStopTheOthers) {
    daemon_.onSet = [](Daemon::Entry& entry, const std::string& value) {
        if (value == "bad") throw client::Refused("Logic error");
        entry.value = value;
    };
    EXPECT_EQ(setAll({{"D.B", "bad"}, {"D.C", "y"}}), kRefused);
    EXPECT_EQ(output_, "D.B = 1\nD.C = y\n");
    EXPECT_EQ(errors_, "trctl: D.B does not take this value: it is not a number\n");
}

TEST_F(SetTest, WhatWasWrittenIsPrintedWhenTheDaemonGoes) {
    daemon_.onSet = [](Daemon::Entry& entry, const std::string& value) {
        if (value == "gone") throw client::NoDaemon("it has ended", "");
        entry.value = value;
    };
    testing::internal::CaptureStdout();
    options_.command = "set";
    options_.assignments = {{"D.B", "x"}, {"D.C", "gone"}};
    const Terminal terminal(ColorMode::Never);
    Output out;
    Context context{daemon_, options_, terminal, out};
    EXPECT_THROW(runCommand(context), client::NoDaemon);
    out.flush();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "D.B = x\n");
}

TEST_F(SetTest, RestoreWritesWhatDiffersAndPrintsItAsDiffDoes) {
    EXPECT_EQ(restore(R"({"D.A.Mode": "auto", "D.B": "7", "D.C": "8"})"), kDone);
    EXPECT_EQ(output_, "- D.B = 7\n+ D.B = 1\n- D.C = 8\n+ D.C = 2\n");
    EXPECT_EQ(errors_, "");
    EXPECT_EQ(daemon_.entries["D.B"].value, "7");
    EXPECT_EQ(writes_, (std::vector<std::string>{"7", "8"}));
    EXPECT_EQ(restore(R"({"D.A.Mode": "auto", "D.B": "7", "D.C": "8"})"), kDone);
    EXPECT_EQ(output_, "");
}

TEST_F(SetTest, RestoreTakesPathsOfTheFile) {
    EXPECT_EQ(restore(R"({"D.A.Mode": "off", "D.B": "7", "D.C": "8"})", {"D.A.", "*.C"}), kDone);
    EXPECT_EQ(output_, "- D.A.Mode = off\n+ D.A.Mode = auto\n- D.C = 8\n+ D.C = 2\n");
    EXPECT_EQ(daemon_.entries["D.B"].value, "1");
    EXPECT_EQ(restore(R"({"D.B": "7"})", {"D.C"}), kRefused);
    EXPECT_NE(errors_.find(" has no D.C\n"), std::string::npos) << errors_;
    EXPECT_EQ(output_, "");
}

TEST_F(SetTest, ADryRunPrintsTheSameAndWritesNothing) {
    options_.dryRun = true;
    EXPECT_EQ(restore(R"({"D.B": "7", "D.Name": "x"})"), kDone);
    EXPECT_EQ(output_, "- D.B = 7\n+ D.B = 1\n");
    EXPECT_EQ(errors_, "trctl: left alone: 1 read-only that differ\n");
    EXPECT_TRUE(writes_.empty());
}

TEST_F(SetTest, RestoreCountsWhatItLeavesAlone) {
    const std::size_t before = daemon_.entries.size();
    EXPECT_EQ(restore("{\"D.Name\": \"x\", \"D.A.Rate\": \"6\", \"D.Nope\": \"1\", \"D.A.\": \"\", "
                      "\"D.A.Mode\": \"psk=********\", \"D.B\": \"a\xEF\xBF\xBD\"}"),
              kDone);
    EXPECT_EQ(output_, "");
    EXPECT_EQ(errors_,
              "trctl: left alone: 2 read-only that differ\n"
              "trctl: left alone: 2 that no longer exist\n"
              "trctl: left alone: 1 whose saved values are masked (********)\n"
              "trctl: left alone: 1 whose saved values are not as they were (U+FFFD)\n");
    EXPECT_TRUE(writes_.empty());
    EXPECT_EQ(daemon_.entries.size(), before);
}

TEST_F(SetTest, RestoreExits1WhenAValueDidNotTake) {
    daemon_.onSet = [](Daemon::Entry& entry, const std::string& value) {
        if (value != "7") entry.value = value;
    };
    EXPECT_EQ(restore(R"({"D.B": "7", "D.C": "8"})"), kRefused);
    EXPECT_EQ(output_, "- D.B = 7\n+ D.B = 1\n- D.C = 8\n+ D.C = 2\n");
    EXPECT_NE(errors_.find("trctl: D.B: it did not take"), std::string::npos) << errors_;
    EXPECT_EQ(daemon_.entries["D.C"].value, "8");
}

TEST_F(SetTest, RestoreSkipsAValueThatCannotBeRead) {
    daemon_.refused["D.B"] = true;
    EXPECT_EQ(restore(R"({"D.B": "7", "D.C": "8"})"), kRefused);
    EXPECT_EQ(errors_, "trctl: D.B: too large\n");
    EXPECT_EQ(writes_, std::vector<std::string>{"8"});
}

TEST_F(SetTest, RestoreExits2ForAFileThatItCannotUse) {
    for (const char* text : {"", "[]", "{\"D.B\": 1}", "{\"D.B\": \"1\"} x"}) {
        EXPECT_EQ(restore(text), kUsage) << text;
        EXPECT_NE(errors_.find(options_.file + ": "), std::string::npos) << errors_;
    }
    options_.file = "/nope";
    EXPECT_EQ(run("restore"), kUsage);
}

}  // namespace
