#include "tests/unit/providers/NetworkBoxTest.h"

#include <string>

#include <arpa/inet.h>
#include <net/if.h>
#include <netpacket/packet.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr unsigned kEthernetHeader = 14;
constexpr unsigned kFrameBytes = 1000;

// A raw socket on one interface, because a frame of known size needs no peer that answers.
class FrameSender {
  public:
    explicit FrameSender(const std::string& interface)
        : descriptor_(socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0)) {
        address_.sll_family = AF_PACKET;
        address_.sll_ifindex = static_cast<int>(if_nametoindex(interface.c_str()));
        address_.sll_halen = 6;
    }
    ~FrameSender() { close(descriptor_); }
    FrameSender(const FrameSender&) = delete;
    FrameSender& operator=(const FrameSender&) = delete;

    void send(unsigned count) const {
        const std::string frame = std::string(12, '\xff') + std::string(kFrameBytes - 12, '\0');
        for (; count > 0; --count) {
            ASSERT_EQ(sendto(descriptor_, frame.data(), frame.size(), 0,
                             reinterpret_cast<const sockaddr*>(&address_), sizeof address_),
                      static_cast<ssize_t>(frame.size()));
        }
    }

  private:
    int descriptor_;
    sockaddr_ll address_{};
};

class NetworkTrafficTest : public NetworkBoxTest {
  protected:
    long long counted(const std::string& name) const {
        const std::string figure = ip(1, "Stats." + name);
        EXPECT_EQ(figure, ethernet(1, "Stats." + name));
        return std::stoll(figure);
    }
    bool grewBy(const std::string& name, long long before, long long growth) {
        return box::waitUntil([&] {
            provider_.updateValues();
            return counted(name) >= before + growth;
        });
    }
};

TEST_F(NetworkTrafficTest, WhatIsSentIsCountedWhereItIsSent) {
    provider_.updateValues();
    const std::string ofOther = ip(2, "Stats.BytesSent");
    const long long bytes = counted("BytesSent");
    const long long packets = counted("PacketsSent");
    FrameSender("eth0").send(50);
    EXPECT_TRUE(grewBy("BytesSent", bytes, 50 * kFrameBytes));
    EXPECT_GE(counted("PacketsSent"), packets + 50);
    EXPECT_EQ(counted("UnicastPacketsSent"), counted("PacketsSent"));
    EXPECT_EQ(ip(2, "Stats.BytesSent"), ofOther);
}

TEST_F(NetworkTrafficTest, WhatIsReceivedIsCounted) {
    provider_.updateValues();
    const long long bytes = counted("BytesReceived");
    const long long packets = counted("PacketsReceived");
    FrameSender("peer-eth0").send(50);
    EXPECT_TRUE(grewBy("BytesReceived", bytes, 50 * (kFrameBytes - kEthernetHeader)));
    EXPECT_GE(counted("PacketsReceived"), packets + 50);
    EXPECT_EQ(counted("UnicastPacketsReceived"),
              counted("PacketsReceived") - counted("MulticastPacketsReceived"));
}

TEST_F(NetworkTrafficTest, AVanishedInterfaceKeepsItsCountsUntilItReturnsUnderItsOldIndex) {
    FrameSender("eth0").send(500);
    provider_.updateValues();
    ASSERT_TRUE(grewBy("BytesSent", 0, 500 * kFrameBytes));
    const long long bytes = counted("BytesSent");
    const unsigned index = if_nametoindex("eth0");
    run("ip link del eth0");
    provider_.updateValues();
    EXPECT_EQ(counted("BytesSent"), bytes);
    run("ip link add name eth0 index " + std::to_string(index) + " type veth peer name peer-eth0");
    provider_.updateValues();
    EXPECT_EQ(if_nametoindex("eth0"), index);
    EXPECT_LT(counted("BytesSent"), 500 * kFrameBytes);
}

TEST_F(NetworkTrafficTest, AnInterfaceThatIsRemadeBetweenTwoRefreshesCountsFromTheKernelsFigure) {
    FrameSender("eth0").send(500);
    provider_.updateValues();
    ASSERT_TRUE(grewBy("BytesSent", 0, 500 * kFrameBytes));
    run("ip link del eth0");
    addInterface("eth0");
    provider_.updateValues();
    EXPECT_LT(counted("BytesSent"), 500 * kFrameBytes);
}

}  // namespace
