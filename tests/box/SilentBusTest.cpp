// Interrupts with a bus that is there and does not answer, at each step of the way to it.

#include "tests/box/DaemonTest.h"
#include "tests/support/Faults.h"
#include "tests/support/Repeating.h"
#include "tests/support/UnixSocket.h"

#include <gtest/gtest.h>

#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

const std::string kSilentSocket = "/tmp/silent-bus";

/// Passes everything on between one client and the bus until the client sends the word, then
/// nothing any more.
class FallingSilent {
  public:
    FallingSilent(const std::string& bus, std::string word)
        : bus_(UnixSocket::connectedTo(bus)),
          listening_(UnixSocket::listeningAt(kSilentSocket)),
          word_(std::move(word)),
          passing_([this] { pass(); }, std::chrono::milliseconds(1)) {}

  private:
    void pass() {
        if (!client_) {
            if (!hasInput(listening_.get())) return;
            client_ = std::make_unique<UnixSocket>(accept4(listening_.get(), nullptr, nullptr, 0));
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

    const UnixSocket bus_;
    const UnixSocket listening_;
    const std::string word_;
    std::unique_ptr<UnixSocket> client_;
    bool isSilent_ = false;
    Repeating passing_;
};

/// Listens, and has as many connections waiting as it takes: connecting blocks.
struct FullSocket {
    UnixSocket listening{UnixSocket::listeningAt(kSilentSocket)};
    std::vector<std::unique_ptr<UnixSocket>> waiting;

    FullSocket() {
        do
            waiting.push_back(std::make_unique<UnixSocket>(
                UnixSocket::connectedTo(kSilentSocket, SOCK_NONBLOCK)));
        while (waiting.back()->get() >= 0);
    }
};

struct Row {
    const char* name;
    std::function<Fault(PrivateBus&)> silence;
};

std::function<Fault(PrivateBus&)> silentFrom(const char* word) {
    return [word](PrivateBus& bus) -> Fault {
        const std::string path = bus.address().substr(std::string("unix:path=").size());
        auto silence = std::make_shared<FallingSilent>(path, word);
        setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + kSilentSocket).c_str(), 1);
        return silence;
    };
}

std::vector<Row> rows() {
    return {
        {"AStoppedBus",
         [](PrivateBus& bus) {
             bus.freeze();
             return faults::until([&bus] { bus.wake(); });
         }},
        {"AFullSocket",
         [](PrivateBus&) {
             setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + kSilentSocket).c_str(), 1);
             return std::make_shared<FullSocket>();
         }},
        {"Authentication", silentFrom("AUTH")},
        {"Hello", silentFrom("Hello")},
        {"TheNamesRequest", silentFrom("RequestName")},
        {"TheOwnersQuery", silentFrom("GetNameOwner")},
        // To compare: the same stop with a bus that answers.
        {"ABusThatAnswers", [](PrivateBus&) { return nullptr; }},
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
        ASSERT_TRUE(box::waitForCalls("ps"));
        // libdbus itself gives up after 25 seconds, or never.
        deadline_ = std::chrono::seconds(15);
    }
    void TearDown() override { box::setFault("ps", ""); }

  private:
    Fault silence_;
};

TEST_P(SilentBusTest, AnInterruptStopsTheWorkerInOrder) {
    expectOrderlyStop();
    EXPECT_EQ(box::calls("ps").size(), 2U);  // the cycle under way was finished
}

const auto nameOf = [](const auto& row) { return std::string(row.param.name); };

INSTANTIATE_TEST_SUITE_P(SilentBuses, SilentBusTest, ::testing::ValuesIn(rows()), nameOf);

class SilentBusTwiceTest : public SilentBusTest {};

TEST_P(SilentBusTwiceTest, ASecondInterruptEndsTheDaemonAtOnce) {
    box::setFault("ps", "hang");
    ASSERT_TRUE(box::waitForCalls("ps", 2));
    daemon().send(SIGINT);
    EXPECT_FALSE(daemon().waitForEnd(std::chrono::milliseconds(1500)).has_value());
    daemon().send(SIGINT);
    expectEnd({255, 0});
}

INSTANTIATE_TEST_SUITE_P(SilentBuses, SilentBusTwiceTest, ::testing::Values(rows().front()),
                         nameOf);

}  // namespace
