// A bus that is there and does not answer, at each step of the daemon's way to it.

#include "tests/box/DaemonTest.h"
#include "tests/support/Repeating.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

const std::string kSilentSocket = "/tmp/silent-bus";

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

/// An owned socket, or -1.
class Socket {
  public:
    explicit Socket(int descriptor) : descriptor_(descriptor) {}
    ~Socket() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    int get() const { return descriptor_; }
    static int connectedTo(const std::string& path, int flags = 0) {
        const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0);
        const sockaddr_un address = addressOf(path);
        if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            return descriptor;
        close(descriptor);
        return -1;
    }
    static int listeningAt(const std::string& path) {
        const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const sockaddr_un address = addressOf(path);
        if (bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
            listen(descriptor, 1) != 0)
            throw std::runtime_error("no socket to listen at");
        return descriptor;
    }

  private:
    const int descriptor_;
};

using Disturbance = std::shared_ptr<void>;

/// Passes everything on between one client and the bus until the client sends the word, then
/// nothing any more.
class FallingSilent {
  public:
    FallingSilent(const std::string& bus, std::string word)
        : bus_(Socket::connectedTo(bus)),
          listening_(Socket::listeningAt(kSilentSocket)),
          word_(std::move(word)),
          passing_([this] { pass(); }) {}

  private:
    void pass() {
        if (!client_) {
            if (!hasInput(listening_.get())) return;
            client_ = std::make_unique<Socket>(accept4(listening_.get(), nullptr, nullptr, 0));
        }
        if (isSilent_) return;
        if (hasInput(bus_.get())) hand(bus_.get(), client_->get());
        if (hasInput(client_->get())) hand(client_->get(), bus_.get());
    }
    static bool hasInput(int descriptor) {
        pollfd polled{descriptor, POLLIN, 0};
        return poll(&polled, 1, 1) > 0;
    }
    void hand(int from, int to) {
        char piece[4096];
        const ssize_t count = read(from, piece, sizeof piece);
        if (count <= 0) return;
        const std::string text(piece, static_cast<std::size_t>(count));
        isSilent_ = from != bus_.get() && text.find(word_) != std::string::npos;
        if (!isSilent_) send(to, piece, text.size(), MSG_NOSIGNAL);
    }

    const Socket bus_;
    const Socket listening_;
    const std::string word_;
    std::unique_ptr<Socket> client_;
    bool isSilent_ = false;
    Repeating passing_;
};

/// Listens, and has as many connections waiting as it takes: connecting blocks.
struct FullSocket {
    Socket listening{Socket::listeningAt(kSilentSocket)};
    std::vector<std::unique_ptr<Socket>> waiting;

    FullSocket() {
        do
            waiting.push_back(
                std::make_unique<Socket>(Socket::connectedTo(kSilentSocket, SOCK_NONBLOCK)));
        while (waiting.back()->get() >= 0);
    }
};

struct Row {
    const char* name;
    std::function<Disturbance(PrivateBus&)> silence;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.name;
}

std::function<Disturbance(PrivateBus&)> silentFrom(const char* word) {
    return [word](PrivateBus& bus) -> Disturbance {
        const std::string path = bus.address().substr(std::string("unix:path=").size());
        auto silence = std::make_shared<FallingSilent>(path, word);
        setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + kSilentSocket).c_str(), 1);
        return silence;
    };
}

std::vector<Row> rows() {
    return {
        {"AStoppedBus",
         [](PrivateBus& bus) -> Disturbance {
             bus.freeze();
             return {nullptr, [&bus](void*) { bus.wake(); }};
         }},
        {"AFullSocket",
         [](PrivateBus&) -> Disturbance {
             setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + kSilentSocket).c_str(), 1);
             return std::make_shared<FullSocket>();
         }},
        {"Authentication", silentFrom("AUTH")},
        {"Hello", silentFrom("Hello")},
        {"TheNamesRequest", silentFrom("RequestName")},
        {"TheOwnersQuery", silentFrom("GetNameOwner")},
    };
}

class SilentBusTest : public DaemonTest, public ::testing::WithParamInterface<Row> {
  protected:
    void SetUp() override {
        unlink(kSilentSocket.c_str());
        startBus();
        box::clearCalls("ps");
        silence_ = GetParam().silence(bus());
        box::setFault("ps", "slow 1");
        launch();
        ASSERT_TRUE(box::waitUntil([] { return !box::calls("ps").empty(); }));
    }
    void TearDown() override { box::setFault("ps", ""); }
    void expectEndSoon(const ExitStatus& status) {
        // libdbus itself gives up after 25 seconds, or never.
        const auto end = daemon().waitForEnd(std::chrono::seconds(15));
        ASSERT_TRUE(end.has_value()) << daemon().output();
        EXPECT_EQ(*end, status) << daemon().output();
    }

  private:
    Disturbance silence_;
};

TEST_P(SilentBusTest, AnInterruptStopsTheWorkerInOrder) {
    daemon().send(SIGINT);
    expectEndSoon({0, 0});
    EXPECT_EQ(box::calls("ps").size(), 2U);  // the cycle under way was finished
}

INSTANTIATE_TEST_SUITE_P(SilentBuses, SilentBusTest, ::testing::ValuesIn(rows()),
                         [](const auto& row) { return std::string(row.param.name); });

class SilentBusTwiceTest : public SilentBusTest {};

TEST_P(SilentBusTwiceTest, ASecondInterruptEndsTheDaemonAtOnce) {
    box::setFault("ps", "hang");
    ASSERT_TRUE(box::waitUntil([] { return box::calls("ps").size() == 2; }));
    daemon().send(SIGINT);
    EXPECT_FALSE(daemon().waitForEnd(std::chrono::milliseconds(1500)).has_value());
    daemon().send(SIGINT);
    expectEndSoon({255, 0});
}

INSTANTIATE_TEST_SUITE_P(SilentBuses, SilentBusTwiceTest, ::testing::Values(rows().front()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
