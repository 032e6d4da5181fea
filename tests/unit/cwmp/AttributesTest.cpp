#include "cwmp/Attributes.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using cwmp::Attributes;

std::string done(Attributes& attributes, const std::string& name, int notification) {
    std::ostringstream text;
    for (const auto& step : attributes.set(name, notification))
        text << (step.isAddition ? '+' : '-') << step.notification << ' ' << step.name << ';';
    return text.str();
}

Attributes sample() {
    Attributes attributes;
    attributes.add("Device.Ethernet.", 1);
    attributes.add("Device.Ethernet.Interface.2.", 2);
    attributes.add("Device.Ethernet.Interface.2.Name", 0);
    attributes.add("Device.DeviceInfo.UpTime", 2);
    return attributes;
}

TEST(AttributesTest, AnExactEntryWinsElseTheLongestObject) {
    const Attributes attributes = sample();
    EXPECT_EQ(attributes.of("Device.DeviceInfo.UpTime"), 2);
    EXPECT_EQ(attributes.of("Device.DeviceInfo.UpTime2"), 0);
    EXPECT_EQ(attributes.of("Device.Ethernet.Interface.1.Name"), 1);
    EXPECT_EQ(attributes.of("Device.Ethernet.Interface.2.Status"), 2);
    EXPECT_EQ(attributes.of("Device.Ethernet.Interface.2.Name"), 0);
    EXPECT_EQ(attributes.of("Device.EthernetX"), 0);
    EXPECT_EQ(attributes.of(""), 0);
}

TEST(AttributesTest, AnObjectTakesTheEntriesBelowAway) {
    Attributes attributes = sample();
    EXPECT_EQ(done(attributes, "Device.Ethernet.", 2),
              "-1 Device.Ethernet.;-2 Device.Ethernet.Interface.2.;"
              "-0 Device.Ethernet.Interface.2.Name;+2 Device.Ethernet.;");
    EXPECT_EQ(attributes.of("Device.Ethernet.Interface.2.Name"), 2);
}

TEST(AttributesTest, OffNeedsAnEntryOnlyBelowAnObjectThatIsOn) {
    Attributes attributes = sample();
    EXPECT_EQ(done(attributes, "Device.DeviceInfo.UpTime", 0), "-2 Device.DeviceInfo.UpTime;");
    EXPECT_EQ(done(attributes, "Device.Ethernet.Interface.1.Name", 0),
              "+0 Device.Ethernet.Interface.1.Name;");
    EXPECT_EQ(done(attributes, "Device.Nothing", 0), "");
    EXPECT_EQ(attributes.of("Device.Ethernet.Interface.1.Name"), 0);
}

TEST(AttributesTest, WhatTheObjectAboveSaysIsNotSaidAgain) {
    Attributes attributes = sample();
    EXPECT_EQ(done(attributes, "Device.Ethernet.Interface.1.Name", 1), "");
    EXPECT_EQ(done(attributes, "Device.Ethernet.Interface.2.Name", 2),
              "-0 Device.Ethernet.Interface.2.Name;");
    EXPECT_EQ(done(attributes, "Device.DeviceInfo.UpTime", 2),
              "-2 Device.DeviceInfo.UpTime;+2 Device.DeviceInfo.UpTime;");
}

TEST(AttributesTest, TheWholeTreeCanBeSwitched) {
    Attributes attributes = sample();
    attributes.set("Device.", 1);
    EXPECT_EQ(attributes.of("Device.Ethernet.Interface.2.Name"), 1);
    EXPECT_EQ(done(attributes, "Device.", 0), "-1 Device.;");
}

}  // namespace
