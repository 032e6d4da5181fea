#include "model/NotifTable.h"
#include "tests/support/Box.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace {

using TR::Address;
using TR::NotifTable;
using TR::Value;
using Updates = std::map<Address, Value>;

std::string row(const std::string& parameter, const std::string& notification = "2") {
    return R"({ "parameter": ")" + parameter + R"(", "value": "old", "notification": ")" +
           notification + R"(", "type": "xsd:string" })" + "\n";
}

Updates updatesOf(const std::vector<std::string>& parameters) {
    Updates updates;
    for (const std::string& parameter : parameters)
        updates.emplace(Address(parameter), Value(std::string("new")));
    return updates;
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

    NotifTable table_;
};

TEST_F(NotifTableTest, NothingIsPendingAtFirst) {
    EXPECT_EQ(changes(), "");
}

TEST_F(NotifTableTest, AWatchedChangeIsPendingWithItsNewValueAndNotifiesOnce) {
    load(row("a"));
    table_.tryTriggerNotify(updatesOf({"a"}));
    EXPECT_EQ(changes(), box::notificationRow("a", "new"));
    EXPECT_EQ(box::calls("ubus"), std::vector<std::string>{box::kNotifyCommand});
}

TEST_F(NotifTableTest, ReadingThePendingChangesDoesNotClearThem) {
    load(row("a"));
    table_.tryTriggerNotify(updatesOf({"a"}));
    EXPECT_EQ(changes(), changes());
    EXPECT_NE(changes(), "");
}

TEST_F(NotifTableTest, AnUnlistedParameterAddsNothingAndNotifiesNobody) {
    load(row("a"));
    table_.tryTriggerNotify(updatesOf({"b", "a.", "A"}));
    EXPECT_EQ(changes(), "");
    EXPECT_TRUE(box::calls("ubus").empty());
}

TEST_F(NotifTableTest, TwoChangesStandInTableOrder) {
    load(row("z") + row("a"));
    table_.tryTriggerNotify(updatesOf({"a", "z"}));
    EXPECT_EQ(changes(), box::notificationRow("z", "new") + box::notificationRow("a", "new"));
    EXPECT_EQ(box::calls("ubus").size(), 1U);
}

TEST_F(NotifTableTest, AParameterListedTwiceIsPendingTwice) {
    load(row("a") + row("a"));
    table_.tryTriggerNotify(updatesOf({"a"}));
    EXPECT_EQ(changes(), box::notificationRow("a", "new") + box::notificationRow("a", "new"));
}

TEST_F(NotifTableTest, TheNotificationAttributeIsIgnored) {
    load(row("a", "0"));
    table_.tryTriggerNotify(updatesOf({"a"}));
    EXPECT_EQ(box::calls("ubus").size(), 1U);
}

TEST_F(NotifTableTest, ACycleWithoutUpdatesEmptiesThePendingChangesAndNotifiesNobody) {
    load(row("a"));
    table_.tryTriggerNotify(updatesOf({"a"}));
    box::clearCalls("ubus");
    table_.tryTriggerNotify({});
    EXPECT_EQ(changes(), "");
    EXPECT_TRUE(box::calls("ubus").empty());
}

TEST_F(NotifTableTest, AFailingNotifyCommandKeepsTheChanges) {
    box::setFault("ubus", "exit 4");
    load(row("a"));
    table_.tryTriggerNotify(updatesOf({"a"}));
    EXPECT_EQ(changes(), box::notificationRow("a", "new"));
}

TEST_F(NotifTableTest, TriggeringAloneRunsTheCommandWithoutTheMutex) {
    const pthread_helper::scoped_lock lock(table_.getMutex());
    table_.triggerNotify();
    EXPECT_EQ(box::calls("ubus"), std::vector<std::string>{box::kNotifyCommand});
}

TEST_F(NotifTableTest, AMissingValueEndsTheRowsReadingThere) {
    load(R"({ "parameter": "a", "notification": "2", "type": "t" })"
         "\n");
    table_.tryTriggerNotify(updatesOf({"a"}));
    EXPECT_EQ(changes(), R"({ "parameter": "a", "value": "new", "notification": "" })"
                         "\n");
}

TEST_F(NotifTableTest, BadLinesNeitherMatchNorHideTheGoodOnes) {
    load("\n{ half\n" + std::string(1 << 20, 'x') + "\n\xff\xfe" + std::string(3, '\0') +
         "\n[1]\n" + row("a") +
         R"({ "parameter": "b", "value": "no line feed", "notification": "1" })");
    table_.tryTriggerNotify(updatesOf({"a", "b"}));
    EXPECT_EQ(changes(), box::notificationRow("a", "new") +
                             R"({ "parameter": "b", "value": "new", "notification": "1" })"
                             "\n");
}

TEST_F(NotifTableTest, AVanishedFileEmptiesTheTable) {
    load(row("a"));
    std::filesystem::remove(box::kNotificationFile);
    update();
    table_.tryTriggerNotify(updatesOf({"a"}));
    EXPECT_EQ(changes(), "");
}

TEST_F(NotifTableTest, AFolderInThePlaceOfTheFileGivesAnEmptyTable) {
    std::filesystem::create_directory(box::kNotificationFile);
    update();
    table_.tryTriggerNotify(updatesOf({"a"}));
    EXPECT_EQ(changes(), "");
}

TEST_F(NotifTableTest, AFifoInThePlaceOfTheFileDoesNotStall) {
    ASSERT_EQ(mkfifo(box::kNotificationFile, 0600), 0);
    update();
    EXPECT_EQ(changes(), "");
}

TEST_F(NotifTableTest, WhatTheFileHoldsBeyondEightMebibytesIsNotRead) {
    std::string filler;
    for (int i = 0; i < 8; ++i) filler += std::string((1U << 20) - 1, 'x') + '\n';
    load(row("a") + filler + row("b"));
    table_.tryTriggerNotify(updatesOf({"a", "b"}));
    EXPECT_EQ(changes(), box::notificationRow("a", "new"));
}

TEST_F(NotifTableTest, RereadingReplacesTheTable) {
    load(row("a"));
    load(row("b"));
    table_.tryTriggerNotify(updatesOf({"a", "b"}));
    EXPECT_EQ(changes(), box::notificationRow("b", "new"));
}

}  // namespace
