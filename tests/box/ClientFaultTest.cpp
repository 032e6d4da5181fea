// Clients that do what clients should not, and a bus that comes and goes.

#include "tests/box/DaemonTest.h"
#include "tests/support/Faults.h"
#include "tests/support/Talker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

using List = std::vector<std::string>;

constexpr char kInvalidArguments[] = "org.freedesktop.DBus.Error.InvalidArgs";
constexpr char kCode[] = "Device.DeviceInfo.ProvisioningCode";
const std::string kConfig = "Device.Services.STBService.1.X_Kelm.Config.";

// The bus's limits are not under test here. What may wait for one client is less than the bus takes
// from one; otherwise a client that does not read would block the daemon's replies to all.
constexpr char kLimits[] =
    "<limit name=\"max_replies_per_connection\">50000</limit>"
    "<limit name=\"max_outgoing_bytes\">64000000</limit>"
    "<limit name=\"max_incoming_unix_fds\">100000</limit>"
    "<limit name=\"max_outgoing_unix_fds\">100000</limit>"
    "<limit name=\"max_message_unix_fds\">4096</limit>";

// A sanitizer keeps what was freed.
constexpr std::size_t kFreedButKeptKiB = kIsSanitized ? 512 * 1024 : 0;

class ClientFaultTest : public DaemonTest {
  protected:
    void SetUp() override {
        start(kLimits);
        ASSERT_TRUE(client().set(kConfig + "SyslogHost", "10.1.2.3").ok);
        before_ = quietVitalsOf(daemon().pid());
    }

    // What every fault has to leave behind: a daemon that answers, holds what it held and stops in
    // order.
    void TearDown() override {
        if (HasFatalFailure() || !daemon().isRunning()) return;
        expectAnswers();
        EXPECT_EQ(value(kConfig + "SyslogHost"), "10.1.2.3");
        expectNoMoreThan(before_);
        expectOrderlyStop();
    }

    Vitals before_;
};

TEST_F(ClientFaultTest, AThousandCallsInFlightEachGetTheirOwnAnswer) {
    std::vector<TrClient::Pending> calls;
    for (std::size_t i = 0; i < 1000; ++i)
        calls.push_back(client().sendGetValue(knownParameter(i).address));
    // The last one first: what was answered meanwhile waits in the client.
    for (std::size_t i = calls.size(); i-- > 0;) {
        ASSERT_NE(calls[i], nullptr);
        EXPECT_EQ(TrClient::wait(calls[i]).text, knownParameter(i).text) << i;
    }
}

TEST_F(ClientFaultTest, EightClientsLoseAndMixUpNothingInTwentyThousandCalls) {
    std::vector<std::unique_ptr<Talker>> talkers;
    for (std::size_t i = 0; i < 8; ++i)
        talkers.push_back(std::make_unique<Talker>(bus().address(), i));
    std::vector<std::thread> threads;
    for (auto& talker : talkers) {
        threads.emplace_back([&] {
            while (talker->calls() < 2500) talker->talkOnce();
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const auto& talker : talkers) EXPECT_EQ(talker->mistakes(), 0U);
}

// A separate process, so that it can be killed.
void beAClientThatDies(const std::string& bus, unsigned calls) {
    const pid_t pid = fork();
    if (pid == 0) {
        TrClient dying(bus);
        std::vector<TrClient::Pending> pending;
        for (unsigned i = 0; i < calls; ++i) pending.push_back(dying.sendGetValue(kCode));
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    ASSERT_TRUE(WIFSIGNALED(status));
}

TEST_F(ClientFaultTest, ClientsThatDieInTheMiddleOfTheirCallsHarmNobody) {
    box::setFault("uci", "slow 1");
    for (unsigned i = 0; i < 3; ++i) beAClientThatDies(bus().address(), 1);
    box::setFault("uci", "");
    for (unsigned i = 0; i < 20; ++i) beAClientThatDies(bus().address(), i);
}

TEST_F(ClientFaultTest, AClientThatNeverReadsItsRepliesHarmsNobody) {
    // Its two thousand lists come first; under a sanitizer that takes its time.
    client().setTimeout(std::chrono::minutes(5));
    const faults::ClientThatNeverReads rude(bus().address());
    waitForCycles(1);
    for (int i = 0; i < 200; ++i) EXPECT_EQ(value("Device.DeviceInfo.Manufacturer"), "KELM");
    EXPECT_TRUE(rude.isThere()) << "the client is gone too early";
}

TEST_F(ClientFaultTest, FourHundredUnreadReadsOfALogKeepFewRepliesInMemory) {
    constexpr char kLog[] = "Device.DeviceInfo.DeviceLog";
    constexpr std::size_t kLogBytes = std::size_t{2} << 20;
    client().setTimeout(std::chrono::minutes(5));
    box::writeFile("/tmp/syslog", std::string(kLogBytes, 'x'));
    ASSERT_TRUE(box::waitUntil([&] { return value(kLog).size() >= kLogBytes; }));
    waitForCycles(1);
    const std::size_t quietKiB = peakKiBOf(daemon().pid());
    const faults::ClientThatNeverReads rude(bus().address(),
                                            {TrClient::kInterface, "get_value", {kLog}}, 400);
    ASSERT_TRUE(box::waitUntil(
        [&] {
            const auto list = client().listAddresses().list;
            return std::count(list.begin(), list.end(), rude.kLastAddress) > 0;
        },
        std::chrono::minutes(5)));
    EXPECT_LE(peakKiBOf(daemon().pid()), quietKiB + 8 * kLogBytes / 1024 + kFreedButKeptKiB);
    EXPECT_TRUE(rude.isThere()) << "the client is gone too early";
    expectAnswers();
}

// The last forty calls pile up behind a slow one. Two hundred are more than libdbus expects in one.
TEST_F(ClientFaultTest, DescriptorsInCallsAreClosedAndTheBusStaysConnected) {
    const Fault few = faults::limit(daemon().pid(), RLIMIT_NOFILE, 256);
    const auto descriptors = [](int count) {
        return [count](DBusMessageIter& position) {
            const int descriptor = STDERR_FILENO;
            for (int i = 0; i < count; ++i)
                dbus_message_iter_append_basic(&position, DBUS_TYPE_UNIX_FD, &descriptor);
        };
    };
    std::vector<TrClient::Pending> calls;
    TrClient::Pending slow;
    for (int i = 0; i < 400; ++i) {
        if (i == 360) {
            box::setFault("uci", "slow 1");
            slow = client().sendGetValue(kCode);
        }
        calls.push_back(client().send({TrClient::kInterface,
                                       "get_value",
                                       {"Device.DeviceInfo.Manufacturer"},
                                       descriptors(16)}));
    }
    for (const auto& call : calls) EXPECT_EQ(TrClient::wait(call).text, "KELM");
    EXPECT_TRUE(client().call({TrClient::kInterface, "get_value", {kCode}, descriptors(200)}).ok);
}

using Appending = std::function<void(DBusMessageIter&)>;

template <typename T>
Appending basic(int type, T value) {
    return [=](DBusMessageIter& position) {
        T copy = value;
        dbus_message_iter_append_basic(&position, type, &copy);
    };
}

Appending container(int type, const char* signature, int texts) {
    return [=](DBusMessageIter& position) {
        DBusMessageIter inner;
        dbus_message_iter_open_container(&position, type, signature, &inner);
        for (int i = 0; i < texts; ++i) basic<const char*>(DBUS_TYPE_STRING, "Device.")(inner);
        dbus_message_iter_close_container(&position, &inner);
    };
}

std::map<std::string, Appending> wrongSignatures() {
    return {
        {"none", {}},
        {"boolean", basic<dbus_bool_t>(DBUS_TYPE_BOOLEAN, 1)},
        {"byte", basic<unsigned char>(DBUS_TYPE_BYTE, 7)},
        {"int16", basic<dbus_int16_t>(DBUS_TYPE_INT16, -1)},
        {"uint16", basic<dbus_uint16_t>(DBUS_TYPE_UINT16, 1)},
        {"int32", basic<dbus_int32_t>(DBUS_TYPE_INT32, -1)},
        {"uint32", basic<dbus_uint32_t>(DBUS_TYPE_UINT32, 1)},
        {"int64", basic<dbus_int64_t>(DBUS_TYPE_INT64, -1)},
        {"uint64", basic<dbus_uint64_t>(DBUS_TYPE_UINT64, 1)},
        {"double", basic<double>(DBUS_TYPE_DOUBLE, 0.5)},
        {"path", basic<const char*>(DBUS_TYPE_OBJECT_PATH, "/Device")},
        {"signature", basic<const char*>(DBUS_TYPE_SIGNATURE, "as")},
        {"array", container(DBUS_TYPE_ARRAY, "s", 1)},
        {"variant", container(DBUS_TYPE_VARIANT, "s", 1)},
        {"structure", container(DBUS_TYPE_STRUCT, nullptr, 2)},
        {"dictionary", container(DBUS_TYPE_ARRAY, "{sv}", 0)},
        {"descriptor", basic<int>(DBUS_TYPE_UNIX_FD, STDERR_FILENO)},
    };
}

constexpr const char* kWithArguments[] = {"set", "get_value", "getWritable", "getForcedInform"};
constexpr const char* kWithoutArguments[] = {"listAddresses", "listParametersOnly",
                                             "updateNotifTable", "checkValueChange"};

TEST_F(ClientFaultTest, EveryWrongSignatureIsRefusedWithAndWithoutAnInterface) {
    const auto before = client().listAddresses().list;
    for (const auto& [name, append] : wrongSignatures()) {
        for (const char* interface : {TrClient::kInterface, static_cast<const char*>(nullptr)}) {
            SCOPED_TRACE(name);
            const auto call = [&, &append = append](const char* member, const List& arguments) {
                return client().call({interface, member, arguments, append});
            };
            for (const char* member : kWithArguments)
                EXPECT_EQ(call(member, {}).errorName, kInvalidArguments) << member;
            EXPECT_EQ(call("set", {"Device.X"}).errorName, kInvalidArguments);
            for (const char* member : kWithoutArguments) EXPECT_TRUE(call(member, {}).ok) << member;
        }
    }
    EXPECT_EQ(client().listAddresses().list, before);
}

// One character for each byte value that a D-Bus text may hold, in each place that it may have.
std::string everyByteOfText() {
    std::u32string text;
    for (char32_t character = 1; character < 0x800; ++character) text += character;
    for (char32_t character = 0x800; character < 0x110000; character += 0x3F)
        if (character < 0xD800 || character > 0xDFFF) text += character;
    return std::filesystem::path(text).string();
}

TEST_F(ClientFaultTest, AnyAddressIsTakenAsItIs) {
    const std::string addresses[] = {"",
                                     std::string(1U << 20, 'D'),
                                     everyByteOfText(),
                                     "Device..DeviceInfo..",
                                     "Device.%s%n%x",
                                     "../../etc/passwd"};
    for (const std::string& address : addresses) {
        SCOPED_TRACE(address.substr(0, 40));
        EXPECT_EQ(client().getValue(address).text, "");
        EXPECT_TRUE(client().set(address, address).ok);
        EXPECT_EQ(client().getWritable(address).text, "0");
        EXPECT_EQ(client().getForcedInform(address).text, "0");
        EXPECT_EQ(client().getValue(address).text, "");
        const auto list = client().listAddresses().list;
        EXPECT_EQ(std::count(list.begin(), list.end(), address), address.size() <= 1024 ? 1 : 0);
    }
}

TEST_F(ClientFaultTest, AnyTextIsKeptAsItIs) {
    for (const std::string& text :
         {everyByteOfText(), std::string(1U << 20, 'x'), std::string("$(reboot) `reboot` \"'\\")}) {
        ASSERT_TRUE(client().set(kConfig + "UpdateServer", text).ok);
        EXPECT_EQ(value(kConfig + "UpdateServer"), text);
    }
}

class WholeLifeTest : public DaemonTest {};

// In a build with the leak checker a leak shows in the exit status.
TEST_F(WholeLifeTest, StartThreeCyclesStopLeavesNothingBehind) {
    start();
    ASSERT_TRUE(client().set(kCode, "x").ok);
    watch({"Device.DeviceInfo.UpTime"});
    waitForCycles(2);
    expectOrderlyStop();
}

#if defined(__SANITIZE_ADDRESS__)
TEST_F(WholeLifeTest, TheLeakCheckerFindsALeak) {
    Child::Environment environment = faults::shimEnvironment();
    environment.emplace_back("KELM_SHIM_LEAK", "1");
    start("", environment);
    daemon().send(SIGINT);
    const auto end = daemon().waitForEnd();
    ASSERT_TRUE(end.has_value());
    EXPECT_NE(end->code, 0);
    EXPECT_TRUE(logHas("LeakSanitizer"));
}
#endif

}  // namespace
