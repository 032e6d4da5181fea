#include "cwmp/Snapshot.h"

#include <gtest/gtest.h>

namespace {

using namespace cwmp;

TEST(CwmpSnapshotTest, ARowIsOneLineWithItsKeysInOrder) {
    EXPECT_EQ(formatRow({"Device.A", "x/y \"z\"\n", "2", "xsd:string"}),
              R"({ "parameter": "Device.A", "value": "x\/y \"z\"\n", "notification": "2", )"
              R"("type": "xsd:string" })");
}

TEST(CwmpSnapshotTest, WhatIsWrittenIsReadBack) {
    const Rows rows{{"A", "\",\"value\":null,\"x\":\"", "2", "xsd:string"},
                    {"B", "\n", "1", "xsd:int"}};
    const Rows read = parseRows(formatRows(rows));
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(formatRows(read), formatRows(rows));
}

TEST(CwmpSnapshotTest, LinesThatAreNotRowsAreLeftOut) {
    const Rows rows = parseRows(
        "\n{}\n{\"parameter\":\"A\"}\n{\"parameter\":\"A\",\"value\":null}\n"
        "{\"parameter\":\"A\",\"value\":\"1\"}\n{\"parameter\":\"B\",\"val");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].value, "1");
    EXPECT_EQ(rows[0].type, "");
}

TEST(CwmpSnapshotTest, OnlyWhatWasWatchedBeforeCanHaveChanged) {
    const Rows earlier{{"A", "1", "1", ""}, {"B", "1", "1", ""}, {"C", "1", "1", ""}};
    const Rows today{{"A", "1", "1", ""}, {"B", "2", "2", ""}, {"D", "9", "1", ""}};
    const Rows changed = changedSince(byParameter(earlier), today);
    ASSERT_EQ(changed.size(), 1U);
    EXPECT_EQ(formatRow(changed[0]), formatRow(today[1]));
}

}  // namespace
