#include "dbus/DBusWorker.h"
#include "model/Storage.h"
#include "tests/support/Box.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/TrClient.h"
#include "tests/unit/dbus/LibdbusFaults.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using TR::Address;
using TR::Value;
using List = std::vector<std::string>;

const std::string kBad = "\xEF\xBF\xBD";
constexpr char kLimitsExceeded[] = "org.freedesktop.DBus.Error.LimitsExceeded";
constexpr char kNoMemory[] = "org.freedesktop.DBus.Error.NoMemory";
constexpr std::size_t kLargestReply = std::size_t{32} << 20;

/// The D-Bus thread of this process, served with the test's store.
class DBusWorkerTest : public ::testing::Test {
  protected:
    void serve(TR::Storage* storage) {
        bus_ = std::make_unique<PrivateBus>();
        worker_ = std::make_unique<TR::DBusWorker>(storage);
        worker_->start();
        waitUntilServed();
    }
    void waitUntilServed() {
        client_ = std::make_unique<TrClient>(bus_->address());
        ASSERT_TRUE(box::waitUntil([&] { return client_->getValue("").ok; }));
    }
    void TearDown() override {
        client_.reset();
        worker_.reset();
        bus_.reset();
    }

    Value& at(const std::string& path) { return storage_[Address(path)]; }
    void fill(const std::string& path, Value value) {
        value.setMutableByUser(true);
        storage_.set(Address(path), value);
    }
    TrClient& client() { return *client_; }

    TR::Storage storage_;
    std::unique_ptr<PrivateBus> bus_;
    std::unique_ptr<TR::DBusWorker> worker_;
    std::unique_ptr<TrClient> client_;
};

TEST_F(DBusWorkerTest, WithoutAStoreReadsAreEmptyAndWritesDoNothing) {
    serve(nullptr);
    EXPECT_EQ(client().getValue("a").text, "");
    EXPECT_EQ(client().getWritable("a").text, "");
    EXPECT_EQ(client().getForcedInform("a").text, "");
    EXPECT_EQ(client().listAddresses().list, List{});
    EXPECT_EQ(client().listParametersOnly().list, List{});
    EXPECT_TRUE(client().set("a", "b").ok);
    EXPECT_TRUE(client().updateNotifTable().ok);
    const auto changes = client().checkValueChange();
    EXPECT_TRUE(changes.ok);
    EXPECT_EQ(changes.text, "");
}

TEST_F(DBusWorkerTest, AnUnknownAddressReadsEmptyAndAskingWhetherItIsWritableAddsIt) {
    serve(&storage_);
    EXPECT_EQ(client().getValue("Device.Nothing").text, "");
    for (const auto& reply : {client().listAddresses(), client().listParametersOnly()}) {
        EXPECT_TRUE(reply.ok) << reply.errorName;
        EXPECT_EQ(reply.list, List{});
    }
    EXPECT_EQ(client().getWritable("Device.Nothing").text, "0");
    EXPECT_EQ(client().getForcedInform("Device.Other").text, "0");
    EXPECT_TRUE(client().set("Device.Third", "x").ok);
    EXPECT_EQ(client().listAddresses().list,
              (List{"Device.Nothing", "Device.Other", "Device.Third"}));
    EXPECT_EQ(client().getValue("Device.Third").text, "");
}

TEST_F(DBusWorkerTest, FlagsReadAsOneOrZeroAndParametersAreListedWithoutTheObjects) {
    fill("Device.b", Value(1LL));
    storage_.set(Address("Device."), Value::Object());
    storage_.set(Address("Device.a"), Value(1LL));
    at("Device.a").setForcedInform(true);
    serve(&storage_);
    EXPECT_EQ(client().getWritable("Device.b").text, "1");
    EXPECT_EQ(client().getForcedInform("Device.b").text, "0");
    EXPECT_EQ(client().getWritable("Device.a").text, "0");
    EXPECT_EQ(client().getForcedInform("Device.a").text, "1");
    EXPECT_EQ(client().listAddresses().list, (List{"Device.", "Device.a", "Device.b"}));
    EXPECT_EQ(client().listParametersOnly().list, (List{"Device.a", "Device.b"}));
}

TEST_F(DBusWorkerTest, ATextThatIsNotANumberIsALogicErrorAndChangesNothing) {
    fill("a", Value(1LL));
    serve(&storage_);
    for (const char* text : {"abc", "", "12345678901234567890"}) {
        const auto reply = client().set("a", text);
        EXPECT_FALSE(reply.ok);
        EXPECT_EQ(reply.errorName, "org.freedesktop.DBus.Error.Failed");
        EXPECT_EQ(reply.errorText, "Logic error");
    }
    EXPECT_EQ(client().getValue("a").text, "1");
    // The mutex was released on the way: the next write goes through.
    EXPECT_TRUE(client().set("a", "42abc").ok);
    EXPECT_EQ(client().getValue("a").text, "42");
}

TEST_F(DBusWorkerTest, AReadOnlyValueIsLeftAloneWithoutAnError) {
    storage_.set(Address("a"), Value(1LL));
    serve(&storage_);
    EXPECT_TRUE(client().set("a", "2").ok);
    EXPECT_EQ(client().getValue("a").text, "1");
}

TEST_F(DBusWorkerTest, AFilePathWinsOverAConfigurationPath) {
    fill("a", Value(std::string()));
    at("a").setFilePathToStoreValue("/var/kelm/a");
    at("a").setPathInConfig("easycwmp.@local[0].a");
    serve(&storage_);
    EXPECT_TRUE(client().set("a", "text\n").ok);
    EXPECT_EQ(box::readFile("/var/kelm/a"), "text\n");
    EXPECT_EQ(client().getValue("a").text, "text\n");
    EXPECT_EQ(at("a").getString(), "");
    EXPECT_TRUE(box::calls("uci").empty());
}

TEST_F(DBusWorkerTest, AConfigurationPathRunsUciWithTheTextInQuotes) {
    fill("a", Value(std::string()));
    at("a").setPathInConfig("easycwmp.@local[0].a");
    serve(&storage_);
    EXPECT_TRUE(client().set("a", "two words").ok);
    EXPECT_EQ(at("a").getString(), "");
    EXPECT_EQ(client().getValue("a").text, "two words");
    // The shell sees a.b.c="x" y "z", which is one word x, then y, then z.
    EXPECT_TRUE(client().set("a", "x\" y \"z").ok);
    EXPECT_EQ(box::calls("uci"),
              (List{"uci -q set easycwmp.@local[0].a=two words", "uci -q get easycwmp.@local[0].a",
                    "uci -q set easycwmp.@local[0].a=x y z"}));
}

TEST_F(DBusWorkerTest, AFailingUciOrFileIsNotReported) {
    fill("a", Value(std::string()));
    at("a").setPathInConfig("no.such.package");
    fill("b", Value(std::string()));
    at("b").setFilePathToStoreValue("/no/such/folder/file");
    serve(&storage_);
    EXPECT_TRUE(client().set("a", "x").ok);
    EXPECT_TRUE(client().set("b", "x").ok);
    EXPECT_EQ(client().getValue("b").text, "");
}

TEST_F(DBusWorkerTest, AnyBytesInAValueArriveAsValidText) {
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte) everyByte += static_cast<char>(byte);
    storage_.set(Address("a"), Value(std::string("ok\xFF") + std::string("\0", 1) + "\xC3\xA9"));
    storage_.set(Address("b"), Value(everyByte));
    Value list(Value::Type::String, 0);
    list.listPushString("\xFE");
    list.listPushString("x");
    storage_.set(Address("c"), list);
    storage_.set(Address("d\xFF"), Value(1LL));
    serve(&storage_);
    EXPECT_EQ(client().getValue("a").text, "ok" + kBad + kBad + "\xC3\xA9");
    EXPECT_EQ(client().getValue("b").text.size(), 127U + 129U * kBad.size());
    EXPECT_EQ(client().getValue("c").text, kBad + ", x");
    EXPECT_EQ(client().listAddresses().list, (List{"a", "b", "c", "d" + kBad}));
    EXPECT_EQ(client().listParametersOnly().list.size(), 4U);
}

TEST_F(DBusWorkerTest, AReplyAbove32MiBIsAnErrorForThatCallAlone) {
    storage_.set(Address("big"), Value(std::string(kLargestReply, 'x')));
    storage_.set(Address("fits"), Value(std::string(kLargestReply - 200, 'x')));
    // A repaired byte counts with its new length.
    storage_.set(Address("bad"), Value(std::string(kLargestReply / 2, '\xFF')));
    serve(&storage_);
    for (const char* address : {"big", "bad"})
        EXPECT_EQ(client().getValue(address).errorName, kLimitsExceeded) << address;
    EXPECT_EQ(client().getValue("fits").text.size(), kLargestReply - 200);
    EXPECT_FALSE(worker_->isBusLost());
}

TEST_F(DBusWorkerTest, AListAbove32MiBIsAnErrorForThatCallAlone) {
    for (char first = 'a'; first <= 'd'; ++first)
        storage_.set(Address(first + std::string(kLargestReply / 4, 'x')), Value(1LL));
    serve(&storage_);
    EXPECT_EQ(client().listAddresses().errorName, kLimitsExceeded);
    EXPECT_EQ(client().listParametersOnly().errorName, kLimitsExceeded);
    EXPECT_TRUE(client().getValue("").ok);
}

TEST_F(DBusWorkerTest, UnknownAddressesAreAddedUpTo1KiBEach) {
    const std::string longest(1024, 'x');
    serve(&storage_);
    EXPECT_EQ(client().getWritable(longest + "x").text, "0");
    EXPECT_EQ(client().getForcedInform(longest + "x").text, "0");
    EXPECT_TRUE(client().set(longest + "x", "y").ok);
    EXPECT_EQ(client().listAddresses().list, List{});
    EXPECT_EQ(client().getWritable(longest).text, "0");
    EXPECT_EQ(client().listAddresses().list, List{longest});
}

TEST_F(DBusWorkerTest, UnknownAddressesAreAddedUpTo4MiBTogether) {
    constexpr std::size_t kFit = 4096;
    serve(&storage_);
    for (std::size_t i = 0; i < kFit + 10; ++i) {
        const std::string number = std::to_string(100'000 + i);
        EXPECT_EQ(client().getWritable(number + std::string(1024 - number.size(), 'x')).text, "0");
    }
    EXPECT_EQ(client().getForcedInform("a").text, "0");
    EXPECT_TRUE(client().set("b", "x").ok);
    const List list = client().listAddresses().list;
    ASSERT_EQ(list.size(), kFit);
    // What is there already needs no room.
    EXPECT_EQ(client().getWritable(list.front()).text, "0");
    EXPECT_EQ(client().listAddresses().list, list);
}

TEST_F(DBusWorkerTest, AnAddressOfTheStoreIsServedWhateverItsLength) {
    const std::string address(3000, 'a');
    fill(address, Value(1LL));
    at(address).setForcedInform(true);
    serve(&storage_);
    EXPECT_EQ(client().getWritable(address).text, "1");
    EXPECT_EQ(client().getForcedInform(address).text, "1");
    EXPECT_TRUE(client().set(address, "2").ok);
    EXPECT_EQ(client().getValue(address).text, "2");
}

TEST_F(DBusWorkerTest, ACallThatWantsNoReplyGetsNoneButIsCarriedOut) {
    fill("a", Value(1LL));
    serve(&storage_);
    for (const char* interface : {TrClient::kInterface, static_cast<const char*>(nullptr)}) {
        EXPECT_TRUE(client().post({interface, "set", {"a", "5"}}));
        EXPECT_TRUE(client().post({interface, "set", {"a", "no number"}}));
        EXPECT_TRUE(client().post({interface, "getWritable", {"b"}}));
        EXPECT_TRUE(client().post({interface, "getForcedInform", {"c"}}));
        for (const char* member : {"get_value", "listAddresses", "updateNotifTable", "Introspect",
                                   "nonsense", "GetMachineId"})
            EXPECT_TRUE(client().post({interface, member, {"a"}}));
    }
    EXPECT_EQ(client().getValue("a").text, "5");
    EXPECT_EQ(client().listAddresses().list, (List{"a", "b", "c"}));
    EXPECT_EQ(client().strayReplies(), 0U);
}

TEST_F(DBusWorkerTest, ReadingWithoutAReplyRunsNoCommand) {
    fill("a", Value(std::string()));
    at("a").setPathInConfig("easycwmp.@local[0].a");
    serve(&storage_);
    EXPECT_TRUE(client().post({TrClient::kInterface, "get_value", {"a"}}));
    EXPECT_TRUE(client().getValue("").ok);
    EXPECT_TRUE(box::calls("uci").empty());
}

TEST_F(DBusWorkerTest, AReplyThatMemoryDoesNotSufficeForIsAnError) {
    storage_.set(Address("a"), Value(std::string(LibdbusFaults::kUnappendable)));
    storage_.set(Address("b"), Value(1LL));
    serve(&storage_);
    EXPECT_EQ(client().getValue("a").errorName, kNoMemory);
    EXPECT_EQ(client().listAddresses().list, (List{"a", "b"}));
    {
        const pthread_helper::scoped_lock lock(storage_.getStorageMutex());
        storage_.set(Address(LibdbusFaults::kUnappendable), Value(1LL));
    }
    EXPECT_EQ(client().listAddresses().errorName, kNoMemory);
    EXPECT_EQ(client().listParametersOnly().errorName, kNoMemory);
    EXPECT_EQ(client().getValue("b").text, "1");
}

TEST_F(DBusWorkerTest, WithoutMemoryForAnErrorTheConnectionIsClosed) {
    storage_.set(Address("a"), Value(std::string(LibdbusFaults::kUnappendable)));
    serve(&storage_);
    const LibdbusFaults::NoErrors noErrors;
    EXPECT_FALSE(client().getValue("a").ok);
    EXPECT_TRUE(box::waitUntil([&] { return worker_->isBusLost() && worker_->hasCompleted(); }));
}

// Two hundred megabytes of replies are more than the bus takes for one client.
TEST_F(DBusWorkerTest, ABusThatStopsReadingDoesNotDelayTheStop) {
    storage_.set(Address("log"), Value(std::string(2U << 20, 'x')));
    serve(&storage_);
    std::vector<TrClient::Pending> calls;
    for (int i = 0; i < 100; ++i) calls.push_back(client().sendGetValue("log"));
    TrClient bus(bus_->address(), "org.freedesktop.DBus");
    const std::string status = "/proc/" + std::to_string(bus.ownerPid()) + "/statm";
    ASSERT_TRUE(
        box::waitUntil([&] { return std::stoull(box::readFile(status)) * 4096 > 127ULL << 20; }));
    worker_->stop();
    EXPECT_TRUE(worker_->hasCompleted());
    EXPECT_FALSE(worker_->isBusLost());
}

TEST_F(DBusWorkerTest, TheNotificationTableIsReloadedAndItsChangesFetched) {
    serve(&storage_);
    EXPECT_EQ(client().checkValueChange().text, "");
    box::writeNotificationFile({"a"});
    EXPECT_TRUE(client().updateNotifTable().ok);
    storage_.getNotifTable().tryTriggerNotify({{Address("a"), Value(std::string("bad \xFF"))}});
    EXPECT_EQ(client().checkValueChange().text, box::notificationRow("a", "bad " + kBad));
}

TEST_F(DBusWorkerTest, StoppingAndStartingServesAgain) {
    fill("a", Value(1LL));
    serve(&storage_);
    worker_->stop();
    EXPECT_FALSE(client().getValue("a").ok);
    worker_->start();
    waitUntilServed();
    EXPECT_EQ(client().getValue("a").text, "1");
}

TEST_F(DBusWorkerTest, AStopAtAnyPointOfTheStartEndsTheThread) {
    bus_ = std::make_unique<PrivateBus>();
    for (int i = 0; i < 100; ++i) {
        TR::DBusWorker worker(&storage_);
        worker.start();
        for (int spins = i * 50; spins > 0; --spins) sched_yield();
        worker.stop();
        // A slow bus may keep it inside libdbus for a while longer.
        EXPECT_TRUE(box::waitUntil([&] { return worker.hasCompleted(); }));
    }
}

TEST_F(DBusWorkerTest, ALostBusEndsTheThreadAndIsReported) {
    serve(&storage_);
    EXPECT_FALSE(worker_->isBusLost());
    bus_->kill();
    EXPECT_TRUE(box::waitUntil([&] { return worker_->isBusLost() && worker_->hasCompleted(); }));
}

TEST_F(DBusWorkerTest, ALostBusIsReportedWhileACallIsHeldUp) {
    serve(&storage_);
    {
        const pthread_helper::scoped_lock lock(storage_.getStorageMutex());
        const TrClient::Pending call = client().sendGetValue("a");
        bus_->kill();
        EXPECT_TRUE(box::waitUntil([&] { return worker_->isBusLost(); }));
    }
    EXPECT_TRUE(box::waitUntil([&] { return worker_->hasCompleted(); }));
}

TEST_F(DBusWorkerTest, WithoutABusTheThreadEndsAndNoBusIsLost) {
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus", 1);
    TR::DBusWorker worker(&storage_);
    worker.start();
    EXPECT_TRUE(box::waitUntil([&] { return worker.hasCompleted(); }));
    EXPECT_FALSE(worker.isBusLost());
    worker.stop();
}

}  // namespace
