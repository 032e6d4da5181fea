#include "servicemonitoring/ServiceMonitoring.h"
#include "tests/unit/servicemonitoring/Monitored.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <utility>

namespace {

using TR::Value;
using TR::Utils::TimeUnit;

const char* const kSampleLists[] = {"MainStream.1.Sample.SampleSeconds",
                                    "MainStream.1.Sample.MPEG2TSStats.PacketDiscontinuityCounter",
                                    "MainStream.1.Sample.VideoDecoderStats.DecodedFrames",
                                    "MainStream.1.Sample.VideoDecoderStats.LostFrames",
                                    "MainStream.1.Sample.VideoDecoderStats.FrameRate",
                                    "MainStream.1.Sample.AudioDecoderStats.DecodedFrames",
                                    "MainStream.1.Sample.AudioDecoderStats.DecodingErrors"};

const char* const kTotals[] = {"MainStream.1.Total.MPEG2TSStats.PacketDiscontinuityCounter",
                               "MainStream.1.Total.AudioDecoderStats.DecodedFrames",
                               "MainStream.1.Total.AudioDecoderStats.DecodingErrors",
                               "MainStream.1.Total.VideoDecoderStats.FrameRate",
                               "MainStream.1.Total.VideoDecoderStats.DecodedFrames",
                               "MainStream.1.Total.VideoDecoderStats.LostFrames"};

std::string beginning(TimeUnit unit) {
    NSTime begin;
    begin = TR::Utils::getBeginningTimeval(NSTime::now(), unit);
    return begin.toString("%Y-%m-%d %H:%M:%S %Z");
}

class ServiceMonitoringTest : public ::testing::Test {
  protected:
    std::string text(const std::string& name) { return service_.text(name); }
    void write(const std::string& name, const std::string& value) {
        ASSERT_TRUE(service_.write(name, value)) << name;
    }
    void writeAndCycle(const std::string& name, const std::string& value) {
        write(name, value);
        service_.cycle();
    }

    /// Every list has that many items, all of them 0.
    void expectSamples(std::size_t count) {
        for (const char* name : kSampleLists) {
            const Value list = service_.value(name);
            EXPECT_EQ(list.getType(), Value::Type::Integer) << name;
            EXPECT_EQ(list.getList(), std::vector<Value::ValueHolder>(count)) << name;
        }
    }

    /// Runs the action and expects both report times at the beginning of the unit. The clock may
    /// enter the next unit meanwhile.
    template <typename Action>
    void expectReportRestarts(TimeUnit unit, Action action) {
        const std::string before = beginning(unit);
        action();
        const std::string after = beginning(unit);
        const std::string start = text("ReportStartTime");
        EXPECT_TRUE(start == before || start == after) << start;
        EXPECT_EQ(text("ReportEndTime"), start);
    }

    const TR::ServiceMonitoring::MainStream& stream() { return *service_.monitoring.mainStream(1); }

    Monitored<Uncounted> service_;
};

TEST_F(ServiceMonitoringTest, InitCreatesExactlyItsEightParameters) {
    const std::pair<const char*, Value> parameters[] = {
        {"SampleEnable", Value(0LL)},
        {"SampleState", Value(std::string("Disabled"))},
        {"SampleInterval", Value(0LL)},
        {"ReportSamples", Value(10)},
        {"FetchSamples", Value(0LL)},
        {"ForceSample", Value(0LL)},
        {"MainStreamNumberOfEntries", Value(1)},
    };
    for (const auto& [name, value] : parameters) EXPECT_EQ(service_.value(name), value) << name;
    EXPECT_NE(text("TimeReference"), "");
    EXPECT_EQ(service_.names().size(), 8u);
}

TEST_F(ServiceMonitoringTest, TheTimeReferenceIsTheBeginningOfTheDay) {
    const std::string before = beginning(TimeUnit::Day);
    Monitored<Uncounted> service;
    const std::string reference = service.text("TimeReference");
    EXPECT_TRUE(reference == before || reference == beginning(TimeUnit::Day)) << reference;
}

TEST_F(ServiceMonitoringTest, TimesAreLocalAndNameTheirZone) {
    setenv("TZ", "XYZ-3", 1);
    EXPECT_EQ(TR::Utils::getBeginningTimeval(0, TimeUnit::Day).tv_sec, -3 * 3600);
    service_.cycle();
    EXPECT_EQ(text("ReportStartTime"), "1970-01-01 03:00:00 XYZ");
    Monitored<Uncounted> service;
    const std::string reference = service.text("TimeReference");
    EXPECT_EQ(reference.substr(reference.size() - 12), "00:00:00 XYZ");
    unsetenv("TZ");
}

// Names and flags are in the golden listing of the whole tree.
TEST_F(ServiceMonitoringTest, ANewStreamShowsAsDisabledAndWithoutFigures) {
    service_.cycle();
    for (const char* object : {"", "MainStream.", "MainStream.1."})
        EXPECT_EQ(service_.value(object), Value::Object()) << object;
    EXPECT_EQ(service_.value("MainStream.1.Enable"), Value(0LL));
    EXPECT_EQ(service_.value("MainStream.1.Status"), Value(std::string("Disabled")));
    EXPECT_EQ(service_.value("MainStream.1.Total.Reset"), Value(0LL));
    EXPECT_EQ(service_.value("MainStream.1.Total.ResetTime").getType(), Value::Type::Integer);
    for (const char* total : kTotals) EXPECT_EQ(service_.value(total), Value(0LL)) << total;
}

TEST_F(ServiceMonitoringTest, AQuietCycleRecordsNoChangeButTheTimeSinceTheReset) {
    service_.cycle();
    service_.storage.clearUpdates();
    service_.cycle();
    for (const auto& [address, value] : service_.storage.updates())
        EXPECT_EQ(address.get(), service_.prefix() + "MainStream.1.Total.ResetTime");
}

TEST_F(ServiceMonitoringTest, WithoutAStoreNothingIsPublished) {
    TR::ServiceMonitoring monitoring(nullptr);
    monitoring.init();
    EXPECT_FALSE(monitoring.store());
    EXPECT_FALSE(monitoring.updateValues());
}

TEST_F(ServiceMonitoringTest, WithoutInitThereAreNoSettingsAndNoSamples) {
    Monitored<Uncounted> service(false);
    EXPECT_TRUE(service.monitoring.updateValues());
    EXPECT_EQ(service.names().count("SampleEnable"), 0u);
    EXPECT_EQ(service.value(kSampleLists[0]).getList().size(), 0u);
}

using SampleIntervalTest = ServiceMonitoringTest;

TEST_F(SampleIntervalTest, NineOrLessOrBeyond32BitsIsAcceptedAsAWriteAndLeavesItAsItWas) {
    service_.cycle();
    const std::string start = text("ReportStartTime");
    write("SampleEnable", "1");
    for (const char* seconds : {"9", "1", "0", "-1", "-9223372036854775808", "4294967296",
                                "4294967306", "9223372036854775807"}) {
        writeAndCycle("SampleInterval", seconds);
        service_.cycle();
        EXPECT_EQ(text("SampleInterval"), seconds);
        EXPECT_EQ(text("SampleState"), "Disabled") << seconds;
        EXPECT_EQ(text("ReportStartTime"), start) << seconds;
    }
    writeAndCycle("SampleInterval", "4294967295");
    service_.cycle();
    EXPECT_EQ(text("SampleState"), "Enabled");
}

TEST_F(SampleIntervalTest, TenBeginsTenZeroSamplesAndTheReportAtTheHour) {
    expectReportRestarts(TimeUnit::Hour, [&] { writeAndCycle("SampleInterval", "10"); });
    expectSamples(10);
    EXPECT_EQ(text("SampleInterval"), "10");
    EXPECT_EQ(text(kSampleLists[0]), "0, 0, 0, 0, 0, 0, 0, 0, 0, 0");
}

TEST_F(SampleIntervalTest, AnotherIntervalRestartsTheSamplesAndTheSameDoesNot) {
    writeAndCycle("SampleInterval", "10");
    expectReportRestarts(TimeUnit::Minute, [&] { writeAndCycle("SampleEnable", "1"); });
    EXPECT_EQ(text("SampleState"), "Enabled");
    expectSamples(10);
    const std::string start = text("ReportStartTime");
    writeAndCycle("SampleInterval", "10");
    EXPECT_EQ(text("ReportStartTime"), start);
    expectReportRestarts(TimeUnit::Hour, [&] { writeAndCycle("SampleInterval", "11"); });
    EXPECT_EQ(text("SampleState"), "Enabled");
}

using SampleEnableTest = ServiceMonitoringTest;

TEST_F(SampleEnableTest, WrittenTogetherWithTheIntervalItIsTakenOneCycleLater) {
    write("SampleEnable", "1");
    write("SampleInterval", "10");
    expectReportRestarts(TimeUnit::Hour, [&] { service_.cycle(); });
    EXPECT_EQ(text("SampleState"), "Disabled");
    expectReportRestarts(TimeUnit::Minute, [&] { service_.cycle(); });
    EXPECT_EQ(text("SampleState"), "Enabled");
}

TEST_F(SampleEnableTest, AnyNumberButZeroSwitchesOnAndZeroLeavesSamplesAndTimesToBeRead) {
    writeAndCycle("SampleInterval", "10");
    for (const char* on : {"2", "-1"}) {
        writeAndCycle("SampleEnable", on);
        EXPECT_EQ(text("SampleState"), "Enabled") << on;
        EXPECT_EQ(text("SampleEnable"), on);
        const std::string start = text("ReportStartTime");
        writeAndCycle("SampleEnable", "0");
        EXPECT_EQ(text("SampleState"), "Disabled");
        EXPECT_EQ(text("ReportStartTime"), start);
        EXPECT_EQ(text("ReportEndTime"), start);
        expectSamples(10);
    }
}

TEST_F(SampleEnableTest, TheSetterKeepsTheSameRules) {
    service_.monitoring.setSampleEnable(true);
    service_.monitoring.setSampleInterval(9);
    service_.monitoring.setSampleEnable(true);
    service_.monitoring.store();
    EXPECT_EQ(text("SampleState"), "Disabled");
    service_.monitoring.setSampleInterval(10);
    service_.monitoring.setSampleEnable(true);
    service_.monitoring.store();
    EXPECT_EQ(text("SampleState"), "Enabled");
    expectSamples(10);
}

using ReportSamplesTest = ServiceMonitoringTest;

TEST_F(ReportSamplesTest, TheListsHaveExactlyThatManyItems) {
    for (const long long count : {10LL, 3LL, 1LL, 0LL, 100LL, 101LL, 10001LL, -5LL, 10LL,
                                  std::numeric_limits<long long>::min()}) {
        service_.put("ReportSamples", Value(count));
        service_.cycle();
        expectSamples(count < 0 ? 0 : static_cast<std::size_t>(count));
        EXPECT_EQ(service_.value("ReportSamples"), Value(count));
    }
}

TEST_F(ReportSamplesTest, SwitchingOnAndANewIntervalKeepThatLength) {
    service_.put("ReportSamples", Value(7));
    writeAndCycle("SampleInterval", "10");
    expectSamples(7);
    writeAndCycle("SampleEnable", "1");
    expectSamples(7);
    service_.cycle();
    expectSamples(7);
}

TEST_F(ReportSamplesTest, OutsideOneToOneHundredTheyKeepSamplingFromBeingSwitchedOn) {
    writeAndCycle("SampleInterval", "10");
    write("SampleEnable", "1");
    for (const int count : {0, 101, -1, 1000}) {
        service_.put("ReportSamples", Value(count));
        service_.cycle();
        EXPECT_EQ(text("SampleState"), "Disabled") << count;
    }
    for (const int count : {1, 100}) {
        service_.put("ReportSamples", Value(count));
        writeAndCycle("SampleEnable", "1");
        EXPECT_EQ(text("SampleState"), "Enabled") << count;
        writeAndCycle("SampleEnable", "0");
    }
}

TEST_F(ReportSamplesTest, TheSetterActsOnlyOnMoreThanTheSettingAndLeavesTheSetting) {
    service_.cycle();
    for (const unsigned count : {10u, 9u, 0u}) {
        service_.monitoring.setReportSamples(count);
        service_.monitoring.store();
        expectSamples(10);
    }
    // Each compares with the setting, not with the samples there are: the second one cuts.
    for (const unsigned count : {10001u, 12u}) {
        service_.monitoring.setReportSamples(count);
        service_.monitoring.store();
        expectSamples(count);
    }
    EXPECT_EQ(text("ReportSamples"), "10");
    service_.cycle();
    expectSamples(10);
}

class MainStreamSettingsTest : public ServiceMonitoringTest {
  protected:
    void setAll(unsigned index) {
        service_.monitoring.setMainStreamEnable(true, index);
        service_.monitoring.setMainStreamServiceType("IPTV", index);
        service_.monitoring.setMainStreamGmin(1, index);
        service_.monitoring.setMainStreamSevereLossMinDistance(2, index);
        service_.monitoring.setMainStreamSevereLossMinLength(3, index);
    }
};

TEST_F(MainStreamSettingsTest, TheSettersStoreTheirValuesAndAnIndexWithoutAStreamHasNoEffect) {
    const NSTime resetTime = stream().resetTime();
    for (const unsigned index : {0u, 2u, std::numeric_limits<unsigned>::max()}) {
        setAll(index);
        service_.monitoring.mainStreamTotalReset(index);
        EXPECT_EQ(service_.monitoring.mainStream(index), nullptr);
    }
    EXPECT_FALSE(stream().isEnabled());
    EXPECT_EQ(stream().serviceType(), "");
    EXPECT_EQ(stream().gmin() + stream().severeLossMinDistance() + stream().severeLossMinLength(),
              0u);
    EXPECT_EQ(stream().resetTime(), resetTime);
    setAll(1);
    EXPECT_TRUE(stream().isEnabled());
    EXPECT_EQ(stream().serviceType(), "IPTV");
    EXPECT_EQ(stream().gmin(), 1u);
    EXPECT_EQ(stream().severeLossMinDistance(), 2u);
    EXPECT_EQ(stream().severeLossMinLength(), 3u);
}

TEST_F(MainStreamSettingsTest, TheSettersWithoutAnEffectHaveNone) {
    service_.cycle();
    const std::string reference = text("TimeReference");
    service_.monitoring.setFetchSamples(5);
    service_.monitoring.setTimeReference(NSTime(1));
    service_.monitoring.forceSample();
    service_.cycle();
    EXPECT_EQ(text("FetchSamples"), "0");
    EXPECT_EQ(text("TimeReference"), reference);
    EXPECT_EQ(text("ForceSample"), "0");
}

using TotalResetTest = ServiceMonitoringTest;

TEST_F(TotalResetTest, AnyNumberButZeroResetsAndZeroDoesNot) {
    service_.cycle();
    for (const char* trigger : {"1", "5", "-1"}) {
        const NSTime before = NSTime::nowRelative();
        writeAndCycle("MainStream.1.Total.Reset", trigger);
        EXPECT_GE(stream().resetTime(), before) << trigger;
        EXPECT_EQ(text("MainStream.1.Total.Reset"), "0");
        EXPECT_TRUE(service_.value("MainStream.1.Total.Reset").isMutableByUser());
    }
    const NSTime resetTime = stream().resetTime();
    writeAndCycle("MainStream.1.Total.Reset", "0");
    EXPECT_EQ(stream().resetTime(), resetTime);
}

TEST_F(TotalResetTest, TheTimeSinceTheResetRestarts) {
    service_.cycle();
    while (service_.value("MainStream.1.Total.ResetTime").getInt64() < 1) service_.cycle();
    const NSTime before = NSTime::nowRelative();
    writeAndCycle("MainStream.1.Total.Reset", "1");
    const std::int64_t sinceWrite = (NSTime::nowRelative() - before).toTimeT();
    EXPECT_LE(service_.value("MainStream.1.Total.ResetTime").getInt64(), sinceWrite);
}

using SettingsOfAnotherTypeTest = ServiceMonitoringTest;

TEST_F(SettingsOfAnotherTypeTest, ATextForANumberIsSkipped) {
    writeAndCycle("SampleInterval", "10");
    for (const char* name : {"FetchSamples", "ReportSamples", "SampleEnable", "SampleInterval",
                             "MainStream.1.Total.Reset", "MainStream.1.Enable"})
        service_.put(name, Value(std::string("1")));
    const NSTime resetTime = stream().resetTime();
    service_.cycle();
    EXPECT_EQ(text("SampleState"), "Disabled");
    EXPECT_EQ(text("MainStream.1.Status"), "Disabled");
    EXPECT_EQ(stream().resetTime(), resetTime);
    expectSamples(10);
    // What every cycle writes is a number again.
    EXPECT_EQ(service_.value("MainStream.1.Total.Reset"), Value(0LL));
    EXPECT_EQ(service_.value("MainStream.1.Enable"), Value(0LL));
}

TEST_F(SettingsOfAnotherTypeTest, WhateverTheTimeReferenceHoldsStays) {
    service_.put("TimeReference", Value(5));
    service_.cycle();
    EXPECT_EQ(text("TimeReference"), "5");
    service_.put("TimeReference", Value(std::string("2020-01-31 12:00:00 UTC")));
    service_.cycle();
    EXPECT_EQ(text("TimeReference"), "2020-01-31 12:00:00 UTC");
}

}  // namespace
