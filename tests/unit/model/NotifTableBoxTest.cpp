#include "model/NotifTable.h"
#include "tests/support/Box.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

using TR::Address;
using TR::NotifTable;
using TR::Value;

std::string row(const std::string& parameter, const std::string& notification = "2") {
    return R"({ "parameter": ")" + parameter + R"(", "value": "old", "notification": ")" +
           notification + R"(", "type": "xsd:string" })" + "\n";
}

class NotifTableTest : public ::testing::Test {
  protected:
    void load(const std::string& content) {
        box::writeFile(box::kNotificationFile, content);
        update();
    }
    void update() {
        const pthread_helper::scoped_lock lock(table_.getMutex());
        table_.update();
    }
    std::string changes() {
        const pthread_helper::scoped_lock lock(table_.getMutex());
        return table_.checkValueChange();
    }
    /// What is pending when these parameters have a new value.
    std::string changesAfter(const std::vector<std::string>& parameters) {
        std::map<Address, Value> updates;
        for (const std::string& parameter : parameters)
            updates.emplace(Address(parameter), Value(std::string("new")));
        table_.tryTriggerNotify(updates);
        return changes();
    }

    NotifTable table_;
};

TEST_F(NotifTableTest, AWatchedChangeIsPendingUntilTheNextCycleAndNotifiesOnce) {
    EXPECT_EQ(changes(), "");
    load(row("a"));
    EXPECT_EQ(changesAfter({"a"}), box::notificationRow("a", "new"));
    EXPECT_EQ(changes(), box::notificationRow("a", "new"));
    EXPECT_EQ(changesAfter({}), "");
    EXPECT_EQ(box::calls("ubus"), std::vector<std::string>{box::kNotifyCommand});
}

TEST_F(NotifTableTest, AnUnlistedParameterAddsNothingAndNotifiesNobody) {
    load(row("a"));
    EXPECT_EQ(changesAfter({"b", "a.", "A"}), "");
    EXPECT_TRUE(box::calls("ubus").empty());
}

TEST_F(NotifTableTest, ChangesStandInTableOrderAsOftenAsTheyAreListed) {
    load(row("z") + row("a") + row("z"));
    EXPECT_EQ(changesAfter({"a", "z"}), box::notificationRow("z", "new") +
                                            box::notificationRow("a", "new") +
                                            box::notificationRow("z", "new"));
    EXPECT_EQ(box::calls("ubus").size(), 1U);
}

TEST_F(NotifTableTest, TheNotificationAttributeIsIgnored) {
    load(row("a", "0"));
    changesAfter({"a"});
    EXPECT_EQ(box::calls("ubus").size(), 1U);
}

TEST_F(NotifTableTest, AFailingNotifyCommandKeepsTheChanges) {
    box::setFault("ubus", "exit 4");
    load(row("a"));
    EXPECT_EQ(changesAfter({"a"}), box::notificationRow("a", "new"));
}

TEST_F(NotifTableTest, TriggeringAloneRunsTheCommandWithoutTheMutex) {
    const pthread_helper::scoped_lock lock(table_.getMutex());
    table_.triggerNotify();
    EXPECT_EQ(box::calls("ubus"), std::vector<std::string>{box::kNotifyCommand});
}

TEST_F(NotifTableTest, BadLinesNeitherMatchNorHideTheGoodOnes) {
    load("\n{ half\n" + std::string(1 << 20, 'x') + "\n\xff\xfe" + std::string(3, '\0') +
         "\n[1]\n" + row("a") +
         R"({ "parameter": "b", "value": "no line feed", "notification": "1" })");
    EXPECT_EQ(changesAfter({"a", "b"}),
              box::notificationRow("a", "new") +
                  R"({ "parameter": "b", "value": "new", "notification": "1" })"
                  "\n");
}

TEST_F(NotifTableTest, AVanishedFileEmptiesTheTable) {
    load(row("a"));
    std::filesystem::remove(box::kNotificationFile);
    update();
    EXPECT_EQ(changesAfter({"a"}), "");
}

TEST_F(NotifTableTest, WhatTheFileHoldsBeyondEightMebibytesIsNotRead) {
    std::string filler;
    for (int i = 0; i < 8; ++i) filler += std::string((1U << 20) - 1, 'x') + '\n';
    load(row("a") + filler + row("b"));
    EXPECT_EQ(changesAfter({"a", "b"}), box::notificationRow("a", "new"));
}

TEST_F(NotifTableTest, RereadingReplacesTheTable) {
    load(row("a"));
    load(row("b"));
    EXPECT_EQ(changesAfter({"a", "b"}), box::notificationRow("b", "new"));
}

}  // namespace
