#include "tests/unit/providers/NetworkBoxTest.h"

#include <atomic>
#include <chrono>
#include <map>
#include <random>
#include <string>
#include <thread>

namespace {

using TR::Address;

constexpr int kWrites = 1000;

Address aliasAddress(unsigned position) {
    return Address("Device.IP.Interface." + std::to_string(position) + ".Alias");
}

class NetworkAliasTest : public NetworkBoxTest {
  protected:
    /// A write as the bus side makes it.
    bool write(unsigned position, const std::string& alias) {
        const pthread_helper::scoped_lock lock(storage_.getStorageMutex());
        return storage_[aliasAddress(position)].setByUserWithConversion(alias);
    }
    bool isWritable(unsigned position) const {
        return storage_.getValueCopy(aliasAddress(position)).isMutableByUser();
    }
};

TEST_F(NetworkAliasTest, IsTheInterfacesNameBehindCpeAtFirst) {
    provider_.updateValues();
    EXPECT_EQ(ip(1, "Alias"), "cpe-eth0");
    EXPECT_EQ(ip(2, "Alias"), "cpe-wlan0");
    EXPECT_TRUE(isWritable(1));
}

TEST_F(NetworkAliasTest, WhatTheAcsWroteLastStaysAndRecordsNoChange) {
    provider_.updateValues();
    for (const char* alias : {"Living room", "Kitchen", "", "cpe-eth0"}) {
        ASSERT_TRUE(write(1, alias));
        for (int cycle = 0; cycle < 3; ++cycle) {
            provider_.updateValues();
            EXPECT_EQ(ip(1, "Alias"), alias);
            EXPECT_TRUE(isWritable(1));
            EXPECT_EQ(provider_.interfaces().at("eth0").alias, alias);
        }
    }
    EXPECT_EQ(ip(2, "Alias"), "cpe-wlan0");
    EXPECT_EQ(changed().count("Device.IP.Interface.1.Alias"), 0U);
}

TEST_F(NetworkAliasTest, AWriteBetweenLoadingAndStoringStays) {
    provider_.updateValues();
    provider_.load();
    ASSERT_TRUE(write(1, "Living room"));
    provider_.store();
    EXPECT_EQ(ip(1, "Alias"), "Living room");
}

TEST_F(NetworkAliasTest, MovesWithItsInterfaceWhenTheNumbersShift) {
    run("ip link set eth0 down && ip link set eth0 name eth1");
    provider_.updateValues();
    ASSERT_TRUE(write(1, "Living room"));
    addInterface("eth0");
    provider_.updateValues();
    EXPECT_EQ(ip(1, "Alias"), "cpe-eth0");
    EXPECT_EQ(ip(2, "Alias"), "Living room");
    EXPECT_EQ(ip(3, "Alias"), "cpe-wlan0");
    ASSERT_TRUE(write(1, "Kitchen"));
    provider_.updateValues();
    EXPECT_EQ(ip(1, "Alias"), "Kitchen");
    EXPECT_EQ(ip(2, "Alias"), "Living room");
}

TEST_F(NetworkAliasTest, AWriteJustBeforeAShiftMovesWithItsInterface) {
    run("ip link set eth0 down && ip link set eth0 name eth1");
    provider_.updateValues();
    addInterface("eth0");
    provider_.load();
    ASSERT_TRUE(write(2, "Upstairs"));
    provider_.store();
    EXPECT_EQ(ip(2, "Alias"), "cpe-eth1");
    EXPECT_EQ(ip(3, "Name"), "wlan0");
    EXPECT_EQ(ip(3, "Alias"), "Upstairs");
}

TEST_F(NetworkAliasTest, AVanishedInterfaceKeepsItAndMayBeGivenAnother) {
    provider_.updateValues();
    ASSERT_TRUE(write(1, "Living room"));
    run("ip link del eth0");
    provider_.updateValues();
    EXPECT_EQ(ip(1, "Alias"), "Living room");
    ASSERT_TRUE(write(1, "Kitchen"));
    provider_.updateValues();
    addInterface("eth0");
    provider_.updateValues();
    EXPECT_EQ(ip(1, "Alias"), "Kitchen");
}

TEST_F(NetworkAliasTest, AProviderThatStartsLaterOnTheSameStoreKeepsIt) {
    provider_.updateValues();
    ASSERT_TRUE(write(2, "Upstairs"));
    TR::NetworkDataProvider later(&storage_);
    later.updateValues();
    EXPECT_EQ(ip(1, "Alias"), "cpe-eth0");
    EXPECT_EQ(ip(2, "Alias"), "Upstairs");
}

/// Writes aliases at random moments, as an ACS might, and knows what each interface must be called.
class RandomWriter {
  public:
    explicit RandomWriter(TR::Storage& storage) : storage_(storage) {}

    void run() {
        for (int count = 0; count < kWrites; ++count) {
            writeOne("written " + std::to_string(count));
            written_ = count + 1;
            // Spread over the cycles; the moment is meant to be any.
            std::this_thread::sleep_for(std::chrono::microseconds(random_() % 1500));
        }
    }
    int written() const { return written_; }

    /// What was written last stands with the interface that it was written to.
    void expectAllFound() {
        const pthread_helper::scoped_lock lock(storage_.getStorageMutex());
        for (unsigned position = 1; position <= instances(); ++position) {
            const auto expected = expected_.find(nameAt(position));
            if (expected == expected_.end()) continue;
            EXPECT_EQ(storage_[aliasAddress(position)].getString(), expected->second);
        }
    }

  private:
    void writeOne(const std::string& alias) {
        const pthread_helper::scoped_lock lock(storage_.getStorageMutex());
        const unsigned position = 1 + static_cast<unsigned>(random_() % instances());
        EXPECT_TRUE(storage_[aliasAddress(position)].setByUserWithConversion(alias));
        expected_[nameAt(position)] = alias;
    }
    // The caller of these two holds the store mutex.
    unsigned instances() const {
        unsigned count = 0;
        while (storage_.hasAddress(aliasAddress(count + 1))) ++count;
        return count;
    }
    std::string nameAt(unsigned position) const {
        return storage_
            .getValueCopy(Address("Device.IP.Interface." + std::to_string(position) + ".Name"))
            .getString();
    }

    TR::Storage& storage_;
    std::mt19937 random_{1};
    std::atomic<int> written_{0};
    std::map<std::string, std::string> expected_;  // guarded by the store mutex
};

TEST_F(NetworkAliasTest, AThousandWritesAtRandomMomentsAllStay) {
    run("ip link del wlan0");  // its tool would take most of a cycle's time
    addInterface("eth3");
    provider_.updateValues();
    RandomWriter writer(storage_);
    std::thread acs([&] { writer.run(); });
    const std::map<int, std::string> newcomers = {{kWrites / 4, "eth2"}, {kWrites / 2, "eth1"}};
    auto newcomer = newcomers.begin();
    while (writer.written() < kWrites) {
        if (newcomer != newcomers.end() && writer.written() >= newcomer->first) {
            addInterface(newcomer->second);
            ++newcomer;
        }
        EXPECT_TRUE(provider_.updateValues());
        writer.expectAllFound();
    }
    acs.join();
    provider_.updateValues();
    writer.expectAllFound();
    EXPECT_EQ(publishedNames().size(), 4U);
}

}  // namespace
