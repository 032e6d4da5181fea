#include "providers/NetworkText.h"

#include <gtest/gtest.h>

#include <net/if.h>

namespace {

using namespace TR::NetworkText;
using Status = TR::NetworkDataProvider::Interface::Status;
using DuplexMode = TR::NetworkDataProvider::Interface::DuplexMode;

constexpr unsigned kUp = IFF_UP;
constexpr unsigned kRunning = IFF_UP | IFF_RUNNING;

TEST(NetworkStatusTest, DownAdministrativelyIsDownWhateverTheKernelsState) {
    for (const char* state : {"up\n", "down\n", "dormant\n", "notpresent\n", "unknown\n", ""}) {
        EXPECT_EQ(status(0, state), Status::Down) << state;
        EXPECT_EQ(status(IFF_RUNNING, state), Status::Down) << state;
    }
}

TEST(NetworkStatusTest, UpAdministrativelyItIsTheKernelsState) {
    EXPECT_EQ(status(kUp, "up\n"), Status::Up);
    EXPECT_EQ(status(kRunning, "down\n"), Status::Down);
    EXPECT_EQ(status(kUp, "dormant\n"), Status::Dormant);
    EXPECT_EQ(status(kUp, "notpresent\n"), Status::NotPresent);
    EXPECT_EQ(status(kUp, "lowerlayerdown\n"), Status::LowerLayerDown);
    EXPECT_EQ(status(kRunning, "unknown\n"), Status::Up);
    EXPECT_EQ(status(kUp, "unknown\n"), Status::Error);
}

TEST(NetworkStatusTest, AnythingElseIsAnError) {
    for (const char* state : {"testing\n", "", "\n", "UP\n", "up down\n", "\xff\xfe"})
        EXPECT_EQ(status(kRunning, state), Status::Error) << state;
}

TEST(NetworkDuplexTest, TheKernelsWordsInAnyCase) {
    EXPECT_EQ(duplexMode("full\n"), DuplexMode::Full);
    EXPECT_EQ(duplexMode("half\n"), DuplexMode::Half);
    EXPECT_EQ(duplexMode("auto\n"), DuplexMode::Auto);
    EXPECT_EQ(duplexMode("Full"), DuplexMode::Full);
    EXPECT_EQ(duplexMode("HALF\n"), DuplexMode::Half);
}

TEST(NetworkDuplexTest, AnythingElseIsAuto) {
    for (const char* duplex : {"unknown\n", "", "fullish\n", "\xff"})
        EXPECT_EQ(duplexMode(duplex), DuplexMode::Auto) << duplex;
}

TEST(NetworkSpeedTest, IsTheKernelsNumberAlsoBeyondASigned32BitOne) {
    EXPECT_EQ(bitRate("10\n"), 10U);
    EXPECT_EQ(bitRate("100"), 100U);
    EXPECT_EQ(bitRate("2147483648\n"), 2147483648U);
    EXPECT_EQ(bitRate("4294967294\n"), 4294967294U);
    EXPECT_EQ(bitRate("4294967296\n"), 4294967296U);
}

// Of a link that is down it is -1, which an old kernel prints unsigned.
TEST(NetworkSpeedTest, UnknownOrNotANumberItIsZero) {
    for (const char* speed :
         {"", "0\n", "-1\n", "4294967295\n", "fast\n", "100fast\n", "1 000\n", "-100\n", "+100\n",
          "0x64\n", "1e3", "99.9\n", "18446744073709551616\n", "9223372036854775808\n", "\n"})
        EXPECT_EQ(bitRate(speed), 0U) << speed;
}

}  // namespace
