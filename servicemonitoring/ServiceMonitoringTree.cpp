#include "servicemonitoring/ServiceMonitoringTree.h"

#include "model/Storage.h"

#include <cstddef>
#include <deque>
#include <utility>

namespace TR::ServiceMonitoringTree {

namespace {

using MainStream = STBServiceMonitoringModel::MainStream;

const std::string kPrefix = "Device.Services.STBService.1.ServiceMonitoring.";

constexpr const char* kObjects[] = {"", "MainStream.", "MainStream.1."};

// The position is the state.
constexpr const char* kSampleStates[] = {"Disabled", "Enabled", "Trigger"};
constexpr const char* kStreamStatuses[] = {"Disabled", "Enabled", "Error"};

struct TotalRow {
    const char* name;
    std::uint32_t MainStream::Total::*figure;
};

constexpr TotalRow kTotals[] = {
    {"MPEG2TSStats.PacketDiscontinuityCounter", &MainStream::Total::packetDiscontinuityCounter},
    {"AudioDecoderStats.DecodedFrames", &MainStream::Total::audioDecodedFrames},
    {"AudioDecoderStats.DecodingErrors", &MainStream::Total::audioDecodingErrors},
    {"VideoDecoderStats.FrameRate", &MainStream::Total::videoFrameRate},
    {"VideoDecoderStats.DecodedFrames", &MainStream::Total::videoDecodedFrames},
    {"VideoDecoderStats.LostFrames", &MainStream::Total::videoLostFrames},
};

struct SampleRow {
    const char* name;
    std::uint32_t MainStream::Sample::*figure;
};

constexpr SampleRow kSamples[] = {
    {"SampleSeconds", &MainStream::Sample::sampleSeconds},
    {"MPEG2TSStats.PacketDiscontinuityCounter", &MainStream::Sample::packetDiscontinuityCounter},
    {"VideoDecoderStats.DecodedFrames", &MainStream::Sample::videoDecodedFrames},
    {"VideoDecoderStats.LostFrames", &MainStream::Sample::videoLostFrames},
    {"VideoDecoderStats.FrameRate", &MainStream::Sample::videoFrameRate},
    {"AudioDecoderStats.DecodedFrames", &MainStream::Sample::audioDecodedFrames},
    {"AudioDecoderStats.DecodingErrors", &MainStream::Sample::audioDecodingErrors},
};

template <std::size_t count>
Value textAt(const char* const (&texts)[count], std::uint32_t position) {
    return Value(std::string(position < count ? texts[position] : ""));
}

// Begins without an element: a list has exactly one for each sample.
Value listOf(const std::deque<MainStream::Sample>& samples,
             std::uint32_t MainStream::Sample::*figure) {
    Value list(Value::Type::Integer, 0);
    for (const MainStream::Sample& sample : samples) list.listPushInteger(sample.*figure);
    return list;
}

}  // namespace

Address address(const std::string& name) {
    return Address(kPrefix + name);
}

Value writable(Value value) {
    value.setMutableByUser(true);
    return value;
}

Value sampleStateText(std::uint32_t state) {
    return textAt(kSampleStates, state);
}

Value timeText(const NSTime& time) {
    return Value(time.toString("%Y-%m-%d %H:%M:%S %Z"));
}

void publishObjects(Storage& storage) {
    for (const char* name : kObjects) storage.set(address(name), Value::Object());
}

void publishMainStream(Storage& storage, const MainStream& stream) {
    const std::string name = "MainStream.1.";
    const NSTime sinceReset = NSTime::nowRelative() - stream.resetTime();
    storage.set(address(kMainStreamEnable), writable(Value(stream.isEnabled())));
    storage.set(address(name + "Status"), textAt(kStreamStatuses, stream.status()));
    storage.set(address(kTotalReset), writable(Value(0)));
    storage.set(address(name + "Total.ResetTime"), Value(sinceReset.toTimeT()));
    for (const TotalRow& row : kTotals)
        storage.set(address(name + "Total." + row.name), Value(stream.total().*row.figure));
    for (const SampleRow& row : kSamples)
        storage.set(address(name + "Sample." + row.name), listOf(stream.samples(), row.figure));
}

}  // namespace TR::ServiceMonitoringTree
