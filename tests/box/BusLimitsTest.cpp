#include "tests/box/DaemonTest.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class SmallBusTest : public DaemonTest {};

TEST_F(SmallBusTest, ALogThatThisBusCannotCarryIsAnErrorForThatCallAlone) {
    start("<limit name=\"max_message_size\">100000</limit>");
    box::writeFile("/tmp/syslog", std::string(200000, 'x'));
    ASSERT_TRUE(box::waitUntil([this] {
        return client().getValue("Device.DeviceInfo.DeviceLog").errorName ==
               "org.freedesktop.DBus.Error.LimitsExceeded";
    }));
    expectAnswers();
    EXPECT_TRUE(daemon().isRunning());
}

TEST_F(SmallBusTest, ATreeThatThisBusCannotListIsAnErrorForThatCallAlone) {
    startBus("<limit name=\"max_message_size\">4000</limit>");
    launch();
    connect();
    ASSERT_TRUE(box::waitUntil([this] {
        return client().listAddresses().errorName == "org.freedesktop.DBus.Error.LimitsExceeded";
    }));
    // The list is too long before the tree is complete.
    EXPECT_TRUE(
        box::waitUntil([this] { return value("Device.DeviceInfo.Manufacturer") == "KELM"; }));
}

}  // namespace
