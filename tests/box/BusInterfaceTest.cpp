#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using List = std::vector<std::string>;

constexpr char kUpTime[] = "Device.DeviceInfo.UpTime";
constexpr char kInvalidArguments[] = "org.freedesktop.DBus.Error.InvalidArgs";
constexpr char kUnknownMethod[] = "org.freedesktop.DBus.Error.UnknownMethod";

class BusInterfaceTest : public DaemonTest {
  protected:
    void SetUp() override { start(); }

    TrReply call(const char* interface, const char* member, const List& arguments = {}) {
        return client().call({interface, member, arguments});
    }
    TrReply withoutInterface(const char* member, const List& arguments = {}) {
        return call(nullptr, member, arguments);
    }
};

// The part of the introspection text that describes the daemon's interface, without the line
// breaks and tabs between its elements.
std::string ownInterface(std::string xml) {
    const std::size_t start = xml.find("<interface name=\"com.kelm.stb.TR\">");
    xml = xml.substr(start, xml.find("</interface>", start) - start);
    xml.erase(std::remove_if(xml.begin(), xml.end(), [](char c) { return c == '\n' || c == '\t'; }),
              xml.end());
    return xml;
}

std::string argument(const char* direction, const char* type, const char* name) {
    return std::string("<arg direction=\"") + direction + "\" type=\"" + type + "\" name=\"" +
           name + "\"/>";
}

std::string method(const char* name, const std::string& arguments) {
    return std::string("<method name=\"") + name + "\">" + arguments + "</method>";
}

TEST_F(BusInterfaceTest, IntrospectionListsExactlyTheEightMethods) {
    const auto reply = call("org.freedesktop.DBus.Introspectable", "Introspect");
    const std::string address = argument("in", "s", "address");
    const std::string result = argument("out", "s", "value");
    EXPECT_EQ(ownInterface(reply.text),
              "<interface name=\"com.kelm.stb.TR\">" +
                  method("set", address + argument("in", "s", "value")) +
                  method("get_value", address + result) + method("getWritable", address + result) +
                  method("getForcedInform", address + result) +
                  method("listAddresses", argument("out", "as", "list")) +
                  method("listParametersOnly", argument("out", "as", "list")) +
                  method("updateNotifTable", "") +
                  method("checkValueChange", argument("out", "s", "changes")));
    EXPECT_EQ(reply.text.find("<signal"), std::string::npos);
    EXPECT_EQ(reply.text.find("<property"), std::string::npos);
}

TEST_F(BusInterfaceTest, EveryMethodAnswersWithoutAnInterfaceHeader) {
    EXPECT_EQ(withoutInterface("get_value", {"Device.DeviceInfo.Manufacturer"}).text, "KELM");
    EXPECT_EQ(withoutInterface("getWritable", {kUpTime}).text, "0");
    EXPECT_EQ(withoutInterface("getForcedInform", {"Device.DeviceInfo.Manufacturer"}).text, "1");
    EXPECT_TRUE(withoutInterface("set", {kUpTime, "x"}).ok);
    EXPECT_EQ(withoutInterface("listAddresses").list, client().listAddresses().list);
    EXPECT_EQ(withoutInterface("listParametersOnly").list, client().listParametersOnly().list);
    EXPECT_TRUE(withoutInterface("updateNotifTable").ok);
    EXPECT_TRUE(withoutInterface("checkValueChange").ok);
}

TEST_F(BusInterfaceTest, TheStandardMethodsAnswerWithoutAnInterfaceHeader) {
    EXPECT_TRUE(withoutInterface("Ping").ok);
    EXPECT_EQ(withoutInterface("Introspect").text,
              call("org.freedesktop.DBus.Introspectable", "Introspect").text);
    EXPECT_EQ(withoutInterface("GetMachineId").text,
              call("org.freedesktop.DBus.Peer", "GetMachineId").text);
}

TEST_F(BusInterfaceTest, AnUnknownMethodIsRefusedInTheSameWayWithAndWithoutAnInterface) {
    const auto with = call("com.kelm.stb.TR", "nonsense");
    const auto without = withoutInterface("nonsense");
    EXPECT_EQ(with.errorName, kUnknownMethod);
    EXPECT_EQ(without.errorName, with.errorName);
    EXPECT_EQ(without.errorText, with.errorText);
    EXPECT_EQ(call("com.kelm.stb.Other", "get_value", {kUpTime}).errorName, kUnknownMethod);
    expectAnswers();
}

TEST_F(BusInterfaceTest, AMissingArgumentIsRefusedWithoutReachingTheStore) {
    const List before = client().listAddresses().list;
    for (const char* member : {"get_value", "getWritable", "getForcedInform", "set"}) {
        EXPECT_EQ(call("com.kelm.stb.TR", member).errorName, kInvalidArguments) << member;
        EXPECT_EQ(withoutInterface(member).errorName, kInvalidArguments) << member;
    }
    EXPECT_EQ(call("com.kelm.stb.TR", "set", {"Device.X"}).errorName, kInvalidArguments);
    EXPECT_EQ(client().listAddresses().list, before);
}

TEST_F(BusInterfaceTest, SurplusArgumentsAreIgnored) {
    EXPECT_EQ(
        call("com.kelm.stb.TR", "get_value", {"Device.DeviceInfo.Manufacturer", "x", "y"}).text,
        "KELM");
    EXPECT_TRUE(call("com.kelm.stb.TR", "listAddresses", {"x"}).ok);
}

TEST_F(BusInterfaceTest, AnUnknownAddressReadsEmptyAndIsAddedOnlyByTheFlagQueries) {
    const List before = client().listAddresses().list;
    EXPECT_EQ(value("Device.Nothing"), "");
    EXPECT_EQ(client().listAddresses().list, before);
    EXPECT_EQ(client().getWritable("Device.Nothing").text, "0");
    const List after = client().listAddresses().list;
    EXPECT_EQ(after.size(), before.size() + 1);
    EXPECT_TRUE(std::find(after.begin(), after.end(), "Device.Nothing") != after.end());
}

TEST_F(BusInterfaceTest, WritesToReadOnlyParametersAreDroppedInSilence) {
    EXPECT_TRUE(client().set("Device.DeviceInfo.Manufacturer", "x").ok);
    EXPECT_TRUE(
        client().set("Device.Services.STBService.1.Capabilities.MaxActiveAVStreams", "9").ok);
    EXPECT_EQ(value("Device.DeviceInfo.Manufacturer"), "KELM");
    EXPECT_EQ(value("Device.Services.STBService.1.Capabilities.MaxActiveAVStreams"), "1");
}

TEST_F(BusInterfaceTest, AnyBytesFromAFileOrACommandArriveAsValidText) {
    box::writeFile("/var/kelm/TZ", std::string("a\xFF") + std::string("\0", 1) + "\xC3\xA9");
    EXPECT_EQ(value("Device.Services.STBService.1.X_Kelm.Config.TimeZone"),
              "a\xEF\xBF\xBD\xEF\xBF\xBD\xC3\xA9");
    box::setFault("uci", "garbage");
    EXPECT_TRUE(client().getValue("Device.DeviceInfo.ProvisioningCode").ok);
    expectAnswers();
}

TEST_F(BusInterfaceTest, AnOverLargeValueIsAnErrorForThatCallAlone) {
    box::writeFile("/tmp/syslog", std::string(33U << 20, 'x'));
    ASSERT_TRUE(box::waitUntil([this] {
        return client().getValue("Device.DeviceInfo.DeviceLog").errorName ==
               "org.freedesktop.DBus.Error.LimitsExceeded";
    }));
    expectAnswers();
}

TEST_F(BusInterfaceTest, NoSocketOfTheDaemonReachesItsCommands) {
    box::setFault("uci", "slow 3");
    const TrClient::Pending call = client().sendGetValue("Device.DeviceInfo.ProvisioningCode");
    ASSERT_TRUE(box::waitForCalls("uci"));
    const std::string children = "/proc/" + std::to_string(daemon().pid()) + "/task/*/children";
    const std::string list =
        "for child in $(cat " + children + "); do ls -l /proc/$child/fd; done >/tmp/descriptors";
    ASSERT_EQ(std::system(list.c_str()), 0);
    const std::string descriptors = box::readFile("/tmp/descriptors");
    EXPECT_NE(descriptors.find("pipe:"), std::string::npos) << "no command was looked at";
    EXPECT_EQ(descriptors.find("socket:"), std::string::npos) << descriptors;
    EXPECT_EQ(descriptors.find("eventfd"), std::string::npos) << descriptors;
}

}  // namespace
