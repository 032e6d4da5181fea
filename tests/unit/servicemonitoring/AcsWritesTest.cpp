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

    void writeInTheMiddle(const std::string& name, const std::string& text) {
        service_.monitoring.inTheMiddle = [=] { EXPECT_TRUE(service_.write(name, text)); };
        service_.cycle();
        EXPECT_EQ(service_.text(name), text) << "the cycle has undone the write";
        EXPECT_TRUE(service_.value(name).isMutableByUser());
    }

    Service service_;
};

TEST_F(AcsWritesInTheMiddleTest, TheMainStreamsEnableIsTakenByTheNextCycle) {
    for (const char* enable : {"1", "0", "1"}) {
        writeInTheMiddle("MainStream.1.Enable", enable);
        service_.cycle();
        EXPECT_EQ(service_.text("MainStream.1.Enable"), enable);
        EXPECT_EQ(service_.monitoring.mainStream(1)->isEnabled(), *enable == '1');
    }
}

TEST_F(AcsWritesInTheMiddleTest, AnEnableThatIsTakenBackAtOnceCountsAsItEnds) {
    service_.write("MainStream.1.Enable", "1");
    writeInTheMiddle("MainStream.1.Enable", "0");
    service_.cycle();
    EXPECT_EQ(service_.text("MainStream.1.Enable"), "0");
    EXPECT_EQ(service_.text("MainStream.1.Status"), "Disabled");
}

TEST_F(AcsWritesInTheMiddleTest, ATotalResetIsDoneByTheNextCycle) {
    writeInTheMiddle("MainStream.1.Total.Reset", "1");
    const NSTime written = NSTime::nowRelative();
    service_.cycle();
    EXPECT_EQ(service_.text("MainStream.1.Total.Reset"), "0");
    EXPECT_GE(service_.monitoring.mainStream(1)->resetTime(), written);
}

TEST_F(AcsWritesInTheMiddleTest, ASecondResetIsNotTakenForTheFirst) {
    service_.write("MainStream.1.Total.Reset", "1");
    writeInTheMiddle("MainStream.1.Total.Reset", "1");
    const NSTime written = NSTime::nowRelative();
    service_.cycle();
    EXPECT_EQ(service_.text("MainStream.1.Total.Reset"), "0");
    EXPECT_GE(service_.monitoring.mainStream(1)->resetTime(), written);
}

TEST_F(AcsWritesInTheMiddleTest, SamplingIsSwitchedByTheNextCycle) {
    writeInTheMiddle("SampleEnable", "1");
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

TEST(AcsWritesBeforeTheFirstPublicationTest, AnEnableThatIsThereAlreadyIsNotUndone) {
    Service service;
    service.monitoring.inTheMiddle = [&] { service.put("MainStream.1.Enable", TR::Value(1)); };
    service.cycle();
    EXPECT_EQ(service.text("MainStream.1.Enable"), "1");
    EXPECT_TRUE(service.value("MainStream.1.Enable").isMutableByUser());
    service.cycle();
    EXPECT_EQ(service.text("MainStream.1.Status"), "Enabled");
}

TEST(AcsWritesBeforeTheFirstPublicationTest, AResetThatIsThereAlreadyIsDone) {
    Service service;
    service.monitoring.inTheMiddle = [&] { service.put("MainStream.1.Total.Reset", TR::Value(1)); };
    service.cycle();
    EXPECT_EQ(service.text("MainStream.1.Total.Reset"), "1");
    EXPECT_TRUE(service.value("MainStream.1.Total.Reset").isMutableByUser());
    service.cycle();
    EXPECT_EQ(service.text("MainStream.1.Total.Reset"), "0");
}

/// The ACS on a thread of its own. Each time it is asked, it writes once, after an uncertain while.
class Acs {
  public:
    explicit Acs(Service& service) : service_(service) {}
    Acs(const Acs&) = delete;
    Acs& operator=(const Acs&) = delete;
    ~Acs() {
        end_ = true;
        thread_.join();
    }

    void ask(const std::string& name, const std::string& text, unsigned turns) {
        name_ = name;
        text_ = text;
        turns_ = turns;
        asked_ = true;
    }
    bool isDone() const { return !asked_; }
    bool wasAccepted() const { return accepted_; }
    NSTime moment() const { return moment_; }

  private:
    void run() {
        while (!end_) {
            if (asked_) {
                for (unsigned turn = 0; turn < turns_; ++turn) idle_ = turn;
                moment_ = NSTime::nowRelative();
                accepted_ = service_.write(name_, text_);
                asked_ = false;
            } else {
                std::this_thread::yield();
            }
        }
    }

    Service& service_;
    // Handed over by asked_: the tester's until it is set, the thread's until it is clear.
    std::string name_;
    std::string text_;
    unsigned turns_ = 0;
    bool accepted_ = false;
    NSTime moment_;
    std::atomic<unsigned> idle_{0};
    std::atomic<bool> asked_{false};
    std::atomic<bool> end_{false};
    std::thread thread_{&Acs::run, this};
};

class AcsWritesAtRandomMomentsTest : public ::testing::Test {
  public:
    AcsWritesAtRandomMomentsTest() {
        service_.cycle();
        service_.write("SampleInterval", "10");
        service_.cycle();
    }

    unsigned upTo(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

    /// Cycles run all the while; after the write there is one more whole cycle.
    void writeWhileCyclesRun(const std::string& name, const std::string& text) {
        acs_.ask(name, text, upTo(20000));
        do {
            service_.cycle();
        } while (!acs_.isDone());
        service_.cycle();
        ASSERT_TRUE(acs_.wasAccepted()) << name << " could not be written for a moment";
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
        ASSERT_GE(service_.monitoring.mainStream(1)->resetTime(), acs_.moment());
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
    Acs acs_{service_};
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
