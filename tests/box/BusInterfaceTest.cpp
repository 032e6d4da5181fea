#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

namespace {

using List = std::vector<std::string>;

constexpr char kUpTime[] = "Device.DeviceInfo.UpTime";
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

// The daemon's interface in the introspection text: a line for each member, with its arguments.
std::string ownInterface(const std::string& xml) {
    const std::size_t start = xml.find("<interface name=\"com.kelm.stb.TR\">");
    const std::string own = xml.substr(start, xml.find("</interface>", start) - start);
    const std::regex part(
        R"re(<(method|signal|property) name="(\w+)"|<arg direction="(\w+)" type="(\w+)" name="(\w+)")re");
    std::string text;
    for (std::sregex_iterator found(own.begin(), own.end(), part), end; found != end; ++found)
        text += found->format((*found)[1].matched ? "\n$1 $2" : " $3 $4 $5");
    return text;
}

TEST_F(BusInterfaceTest, IntrospectionListsExactlyTheEightMethods) {
    EXPECT_EQ(ownInterface(client().introspect().text),
              "\nmethod set in s address in s value"
              "\nmethod get_value in s address out s value"
              "\nmethod getWritable in s address out s value"
              "\nmethod getForcedInform in s address out s value"
              "\nmethod listAddresses out as list"
              "\nmethod listParametersOnly out as list"
              "\nmethod updateNotifTable"
              "\nmethod checkValueChange out s changes");
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
    EXPECT_EQ(withoutInterface("Introspect").text, client().introspect().text);
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
