#include "tests/unit/servicemonitoring/Monitored.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <string>
#include <thread>

namespace {

using Service = Monitored<Uncounted>;

/// One write in the middle of a cycle, between taking the settings and publishing.
class AcsWritesInTheMiddleTest : public ::testing::Test {
  protected:
    AcsWritesInTheMiddleTest() {
        service_.cycle();
        service_.write("SampleInterval", "10");
        service_.cycle();
    }

    void cycleWith(const std::string& name, const std::string& text) {
        service_.monitoring.inTheMiddle = [=] { EXPECT_TRUE(service_.write(name, text)); };
        service_.cycle();
        EXPECT_TRUE(service_.value(name).isMutableByUser());
    }
    const TR::ServiceMonitoring::MainStream& stream() { return *service_.monitoring.mainStream(1); }

    Service service_;
};

TEST_F(AcsWritesInTheMiddleTest, TheMainStreamsEnableIsTakenByTheSameCycleAndReadsAsOneOrZero) {
    for (const char* enable : {"1", "0", "-7"}) {
        const bool isOn = *enable != '0';
        cycleWith("MainStream.1.Enable", enable);
        EXPECT_EQ(service_.text("MainStream.1.Enable"), isOn ? "1" : "0");
        EXPECT_EQ(service_.text("MainStream.1.Status"), isOn ? "Enabled" : "Disabled");
        EXPECT_EQ(stream().isEnabled(), isOn);
    }
}

TEST_F(AcsWritesInTheMiddleTest, AnEnableThatIsTakenBackAtOnceCountsAsItEnds) {
    service_.write("MainStream.1.Enable", "1");
    cycleWith("MainStream.1.Enable", "0");
    EXPECT_EQ(service_.text("MainStream.1.Enable"), "0");
    EXPECT_EQ(service_.text("MainStream.1.Status"), "Disabled");
    EXPECT_FALSE(stream().isEnabled());
}

TEST_F(AcsWritesInTheMiddleTest, ATotalResetIsDoneByTheSameCycleAndReadsZero) {
    for (const char* trigger : {"1", "-5"}) {
        const NSTime before = NSTime::nowRelative();
        cycleWith("MainStream.1.Total.Reset", trigger);
        EXPECT_EQ(service_.text("MainStream.1.Total.Reset"), "0");
        EXPECT_GE(stream().resetTime(), before);
    }
}

TEST_F(AcsWritesInTheMiddleTest, ASecondResetIsDoneToo) {
    service_.write("MainStream.1.Total.Reset", "1");
    NSTime written;
    service_.monitoring.inTheMiddle = [&] {
        written = NSTime::nowRelative();
        EXPECT_TRUE(service_.write("MainStream.1.Total.Reset", "1"));
    };
    service_.cycle();
    EXPECT_EQ(service_.text("MainStream.1.Total.Reset"), "0");
    EXPECT_GE(stream().resetTime(), written);
}

TEST_F(AcsWritesInTheMiddleTest, ASetterIsNotUndoneByWhatWasPublishedBefore) {
    service_.monitoring.setMainStreamEnable(true, 1);
    service_.monitoring.store();
    EXPECT_EQ(service_.text("MainStream.1.Enable"), "1");
    service_.cycle();
    EXPECT_EQ(service_.text("MainStream.1.Status"), "Enabled");
}

TEST_F(AcsWritesInTheMiddleTest, SamplingIsSwitchedByTheNextCycle) {
    cycleWith("SampleEnable", "1");
    EXPECT_EQ(service_.text("SampleEnable"), "1");
    EXPECT_EQ(service_.text("SampleState"), "Disabled");
    service_.cycle();
    EXPECT_EQ(service_.text("SampleEnable"), "1");
    EXPECT_EQ(service_.text("SampleState"), "Enabled");
}

TEST_F(AcsWritesInTheMiddleTest, TheIntervalIsTakenByTheNextCycle) {
    Service service;
    service.cycle();
    service.write("SampleEnable", "1");  // waits for an interval
    service.monitoring.inTheMiddle = [&] { service.write("SampleInterval", "10"); };
    service.cycle();
    EXPECT_EQ(service.text("SampleInterval"), "10");
    service.cycle();
    EXPECT_EQ(service.text("SampleState"), "Disabled");
    service.cycle();
    EXPECT_EQ(service.text("SampleState"), "Enabled");
}

TEST(AcsWritesBeforeTheFirstPublicationTest, AnEnableThatIsThereAlreadyIsPublished) {
    Service service;
    service.monitoring.inTheMiddle = [&] { service.put("MainStream.1.Enable", TR::Value(1)); };
    service.cycle();
    EXPECT_EQ(service.text("MainStream.1.Enable"), "1");
    EXPECT_TRUE(service.value("MainStream.1.Enable").isMutableByUser());
    EXPECT_EQ(service.text("MainStream.1.Status"), "Enabled");
}

TEST(AcsWritesBeforeTheFirstPublicationTest, AResetThatIsThereAlreadyIsDone) {
    Service service;
    NSTime written;
    service.monitoring.inTheMiddle = [&] {
        written = NSTime::nowRelative();
        service.put("MainStream.1.Total.Reset", TR::Value(1));
    };
    service.cycle();
    EXPECT_EQ(service.text("MainStream.1.Total.Reset"), "0");
    EXPECT_TRUE(service.value("MainStream.1.Total.Reset").isMutableByUser());
    EXPECT_GE(service.monitoring.mainStream(1)->resetTime(), written);
}

TEST(AcsWritesBeforeTheFirstPublicationTest, ATextInPlaceOfANumberIsReplaced) {
    Service service;
    service.put("MainStream.1.Enable", TR::Value(std::string("1")));
    service.monitoring.inTheMiddle = [&] {
        service.put("MainStream.1.Enable", TR::Value(std::string("2")));
    };
    service.cycle();
    EXPECT_EQ(service.value("MainStream.1.Enable"), TR::Value(0LL));
}

class AcsWritesAtRandomMomentsTest : public ::testing::Test {
  public:
    AcsWritesAtRandomMomentsTest() {
        service_.cycle();
        service_.write("SampleInterval", "10");
        service_.cycle();
    }

    unsigned upTo(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

    /// The ACS writes some time after cycles have begun to run; after the write there is one more
    /// whole cycle.
    void writeWhileCyclesRun(const std::string& name, const std::string& text) {
        std::atomic<bool> isDone{false};
        bool isAccepted = false;
        std::thread acs([&, turns = upTo(20000)] {
            for (std::atomic<unsigned> turn{0}; turn < turns;) ++turn;
            moment_ = NSTime::nowRelative();
            isAccepted = service_.write(name, text);
            isDone = true;
        });
        do {
            service_.cycle();
        } while (!isDone);
        acs.join();
        service_.cycle();
        ASSERT_TRUE(isAccepted) << name << " could not be written for a moment";
    }

    void switchMainStream() {
        const unsigned enable = upTo(2);
        writeWhileCyclesRun("MainStream.1.Enable", std::to_string(enable));
        ASSERT_EQ(service_.text("MainStream.1.Enable"), std::to_string(enable));
        ASSERT_EQ(service_.text("MainStream.1.Status"), enable == 1 ? "Enabled" : "Disabled");
    }

    void resetTotals() {
        writeWhileCyclesRun("MainStream.1.Total.Reset", "1");
        ASSERT_EQ(service_.text("MainStream.1.Total.Reset"), "0");
        ASSERT_GE(service_.monitoring.mainStream(1)->resetTime(), moment_);
    }

    void switchSampling() {
        const unsigned enable = upTo(2);
        writeWhileCyclesRun("SampleEnable", std::to_string(enable));
        ASSERT_EQ(service_.text("SampleEnable"), std::to_string(enable));
        ASSERT_EQ(service_.text("SampleState"), enable == 1 ? "Enabled" : "Disabled");
    }

    void setInterval() {
        const std::string seconds = std::to_string(10 + upTo(1000));
        writeWhileCyclesRun("SampleInterval", seconds);
        ASSERT_EQ(service_.text("SampleInterval"), seconds);
    }

    std::mt19937 random_{1};
    Service service_;
    NSTime moment_;  // of the last write
};

TEST_F(AcsWritesAtRandomMomentsTest, AThousandWritesAreThereOrHaveTakenEffectAfterTheNextCycle) {
    using Write = void (AcsWritesAtRandomMomentsTest::*)();
    constexpr Write kWrites[] = {
        &AcsWritesAtRandomMomentsTest::switchMainStream, &AcsWritesAtRandomMomentsTest::resetTotals,
        &AcsWritesAtRandomMomentsTest::switchSampling, &AcsWritesAtRandomMomentsTest::setInterval};
    for (int i = 0; i < 1000 && !HasFatalFailure(); ++i) {
        SCOPED_TRACE(i);
        (this->*kWrites[upTo(4)])();
    }
}

}  // namespace
