#include "client/BusAddress.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

using namespace client;

TEST(BusAddressTest, TheLastAssignmentOfASettingsFileCounts) {
    EXPECT_EQ(busAddressIn("DBUS_SESSION_BUS_ADDRESS=unix:path=/a\n"), "unix:path=/a");
    EXPECT_EQ(
        busAddressIn("# The bus\n\nKELM_LOG_LEVEL=INFO\n  export\t DBUS_SESSION_BUS_ADDRESS=x\n"
                     "KELM_LOG_SYSLOG=1"),
        "x");
    EXPECT_EQ(busAddressIn("DBUS_SESSION_BUS_ADDRESS=a\r\nDBUS_SESSION_BUS_ADDRESS=b\r\n"), "b");
    EXPECT_EQ(busAddressIn("DBUS_SESSION_BUS_ADDRESS=a\nDBUS_SESSION_BUS_ADDRESS=\n"), "");
}

TEST(BusAddressTest, OtherLinesAreNoAssignment) {
    for (const char* text :
         {"", "\n", "#DBUS_SESSION_BUS_ADDRESS=a", "# DBUS_SESSION_BUS_ADDRESS=a",
          "XDBUS_SESSION_BUS_ADDRESS=a", "DBUS_SESSION_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS = a",
          "DBUS_SESSION_BUS_ADDRESSES=a", "exportDBUS_SESSION_BUS_ADDRESS=a",
          "echo DBUS_SESSION_BUS_ADDRESS=a"})
        EXPECT_EQ(busAddressIn(text), "") << text;
}

TEST(BusAddressTest, QuotesAreRemovedAndNothingIsExpanded) {
    const auto valueOf = [](const std::string& text) {
        return busAddressIn("DBUS_SESSION_BUS_ADDRESS=" + text + '\n');
    };
    EXPECT_EQ(valueOf("\"unix:path=/a b;tcp:host=x\" # why"), "unix:path=/a b;tcp:host=x");
    EXPECT_EQ(valueOf("'a\\b'\"c\\\"d\\e\"f\\ g h"), "a\\bc\"d\\ef g");
    EXPECT_EQ(valueOf("unix:path=/a;unix:path=/b"), "unix:path=/a;unix:path=/b");
    EXPECT_EQ(valueOf("$(touch /tmp/x)"), "$(touch");
    EXPECT_EQ(valueOf("\"open"), "open");
    EXPECT_EQ(valueOf("end\\"), "end\\");
}

TEST(BusAddressTest, TheGivenAddressComesBeforeTheEnvironmentAndThatBeforeTheRest) {
    const auto only = [](const std::string& given) {
        const auto places = busPlaces(given);
        return places.size() == 1 ? places.front().address : "";
    };
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/variable", 1);
    EXPECT_EQ(only("unix:path=/given"), "unix:path=/given");
    EXPECT_EQ(only(""), "unix:path=/variable");
    setenv("DBUS_SESSION_BUS_ADDRESS", "", 1);
    EXPECT_EQ(busPlaces("").back().address, kPackagedBus);
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    EXPECT_EQ(busPlaces("").back().address, kPackagedBus);
}

}  // namespace
