#pragma once

#include <array>
#include <cstddef>

namespace TR::StaticCapabilities {

/// What one row of the table makes in the store.
enum class Kind { Object, Integer, String, StringList };

/// A constant parameter: its name below `Device.Services.STBService.1.` and the value of its kind.
struct Row {
    const char* name;
    Kind kind;
    long long number;
    const char* text;
    const char* const* items;
    std::size_t itemCount;
};

constexpr Row object(const char* name) {
    return {name, Kind::Object, 0, "", nullptr, 0};
}

constexpr Row number(const char* name, long long value) {
    return {name, Kind::Integer, value, "", nullptr, 0};
}

constexpr Row text(const char* name, const char* value) {
    return {name, Kind::String, 0, value, nullptr, 0};
}

constexpr Row list(const char* name, const char* const* items, std::size_t count) {
    return {name, Kind::StringList, 0, "", items, count};
}

template <std::size_t count>
constexpr Row list(const char* name, const char* const (&items)[count]) {
    return list(name, items, count);
}

// Every decoder lists the first ten. The blank in the third item is published on purpose, and only
// the MPEG-2 decoder's list goes without it.
constexpr std::array<const char*, 11> kAudioStandards = {"MPEG1-Part3-Layer2",
                                                         "MPEG1-Part3-Layer3",
                                                         "MPEG2-Part3 -Layer2",
                                                         "MPEG2-Part3-Layer3",
                                                         "MPEG2.5",
                                                         "MPEG2-AAC-LC",
                                                         "MPEG4-AAC-LC",
                                                         "MPEG4-AAC-MP",
                                                         "MPEG4-BSAC",
                                                         "MPEG4-AAC-HE-v2",
                                                         "DOLBY-AC3"};
constexpr std::size_t kAudioStandardsWithoutAc3 = kAudioStandards.size() - 1;

constexpr auto mpeg2AudioStandards() {
    auto items = kAudioStandards;
    items[2] = "MPEG2-Part3-Layer2";
    return items;
}
constexpr auto kMpeg2AudioStandards = mpeg2AudioStandards();

constexpr const char* kVideoStandards[] = {"MPEG2-Part2", "MPEG4-Part2", "MPEG4-Part10"};
constexpr const char* kAudioFormats[] = {"ANALOG-2-CHANNELS", "HDMI"};
constexpr const char* kCompositeVideoStandards[] = {"NTSC-J", "NTSC-M", "PAL-B", "PAL-D", "PAL-G",
                                                    "PAL-H",  "PAL-I",  "PAL-N", "PAL-M"};
constexpr const char* kVideoFormats[] = {"CVBS", "HDMI"};
constexpr const char* kHighLevelMetricNames[] = {"XYZAudio", "XYZVideo", "XYZAudiovisual"};
constexpr const char* kCASystems[] = {"Verimatrix"};
constexpr const char* kStreamingControlProtocols[] = {"RTSP", "IGMP", "IGMPv2"};
constexpr const char* kStreamingTransportProtocols[] = {"UDP", "TCP", "RTP", "HTTP"};
constexpr const char* kDownloadTransportProtocols[] = {"HTTP", "HTTPS"};
constexpr const char* kMultiplexTypes[] = {"MPEG1-SYS", "MPEG2-PS", "VOB", "MPEG2-TS"};

// The order is the order of publication. Only the first profile level of each decoder is described,
// whatever the counts say; the front end's and decoders' `Components` carry no instance number.
constexpr Row kRows[] = {
    object("Capabilities."),
    number("Enable", 1),
    number("Capabilities.MaxActiveAVStreams", 1),
    number("Capabilities.MaxActiveAVPlayers", 1),
    object("Capabilities.PVR."),
    number("Capabilities.PVR.MaxIOStreams", 1),
    number("Capabilities.PVR.MaxRecordingStreams", 1),
    number("Capabilities.PVR.MaxPlaybackStreams", 1),
    number("Capabilities.PVR.MaxTimeDelay", 30),
    object("Capabilities.AudioDecoder."),
    list("Capabilities.AudioDecoder.AudioStandards", kAudioStandards.data(),
         kAudioStandardsWithoutAc3),
    list("Capabilities.VideoDecoder.VideoStandards", kVideoStandards),
    object("Capabilities.VideoDecoder."),
    object("Capabilities.VideoDecoder.MPEG2Part2."),
    list("Capabilities.VideoDecoder.MPEG2Part2.AudioStandards", kMpeg2AudioStandards.data(),
         kAudioStandardsWithoutAc3),
    number("Capabilities.VideoDecoder.MPEG2Part2.ProfileLevelNumberOfEntries", 2),
    text("Capabilities.VideoDecoder.MPEG2Part2.ProfileLevel.1.Profile", "MP"),
    text("Capabilities.VideoDecoder.MPEG2Part2.ProfileLevel.1.Level", "ML"),
    number("Capabilities.VideoDecoder.MPEG2Part2.ProfileLevel.1.MaximumDecodingCapability", 80000),
    list("Capabilities.VideoDecoder.MPEG4Part2.AudioStandards", kAudioStandards.data(),
         kAudioStandardsWithoutAc3),
    number("Capabilities.VideoDecoder.MPEG4Part2.ProfileLevelNumberOfEntries", 13),
    text("Capabilities.VideoDecoder.MPEG4Part2.ProfileLevel.1.Profile", "SIMPLE"),
    text("Capabilities.VideoDecoder.MPEG4Part2.ProfileLevel.1.Level", "L0"),
    number("Capabilities.VideoDecoder.MPEG4Part2.ProfileLevel.1.MaximumDecodingCapability", 40000),
    object("Capabilities.VideoDecoder.MPEG4Part10."),
    list("Capabilities.VideoDecoder.MPEG4Part10.AudioStandards", kAudioStandards.data(),
         kAudioStandards.size()),
    number("Capabilities.VideoDecoder.MPEG4Part10.ProfileLevelNumberOfEntries", 42),
    text("Capabilities.VideoDecoder.MPEG4Part10.ProfileLevel.1.Profile", "CONSTRAINED BASELINE"),
    number("Capabilities.VideoDecoder.MPEG4Part10.ProfileLevel.1.Level", 1),
    number("Capabilities.VideoDecoder.MPEG4Part10.ProfileLevel.1.MaximumDecodingCapability", 40000),
    object("Capabilities.AudioOutput."),
    list("Capabilities.AudioOutput.AudioFormats", kAudioFormats),
    object("Capabilities.AudioOutput.1."),
    text("Capabilities.AudioOutput.1.AudioFormats", "HDMI"),
    text("Capabilities.AudioOutput.1.Audiolevel", "100"),
    text("Capabilities.AudioOutput.1.CancelMute", "false"),
    text("Capabilities.AudioOutput.1.Name", "AudioOutput.1"),
    text("Capabilities.AudioOutput.1.Status", "Enabled"),
    object("Capabilities.AudioOutput.2."),
    text("Capabilities.AudioOutput.2.AudioFormats", "ANALOG-2-CHANNELS"),
    text("Capabilities.AudioOutput.2.Audiolevel", "100"),
    text("Capabilities.AudioOutput.2.CancelMute", "false"),
    text("Capabilities.AudioOutput.2.Name", "AudioOutput.2"),
    text("Capabilities.AudioOutput.2.Status", "Disabled"),
    object("Capabilities.VideoOutput."),
    list("Capabilities.VideoOutput.CompositeVideoStandards", kCompositeVideoStandards),
    list("Capabilities.VideoOutput.VideoFormats", kVideoFormats),
    object("Capabilities.VideoOutput.1."),
    text("Capabilities.VideoOutput.1.AspectRatioBehaviour", "CenterCutOut"),
    text("Capabilities.VideoOutput.1.CompositeVideoStandard", ""),
    text("Capabilities.VideoOutput.1.Name", "VideoOutput.1"),
    text("Capabilities.VideoOutput.1.Status", "Enabled"),
    text("Capabilities.VideoOutput.1.VideoFormat", "HDMI"),
    object("Capabilities.VideoOutput.2."),
    text("Capabilities.VideoOutput.2.AspectRatioBehaviour", "CenterCutOut"),
    text("Capabilities.VideoOutput.2.CompositeVideoStandard", "NTSC-M"),
    text("Capabilities.VideoOutput.2.Name", "VideoOutput.2"),
    text("Capabilities.VideoOutput.2.Status", "Enabled"),
    text("Capabilities.VideoOutput.2.VideoFormat", "CVBS"),
    object("Capabilities.ServiceMonitoring."),
    number("Capabilities.ServiceMonitoring.MaxActiveMainStreams", 1),
    number("Capabilities.ServiceMonitoring.MinSampleInterval", 1),
    number("Capabilities.ServiceMonitoring.MaxReportSamples", 1),
    list("Capabilities.ServiceMonitoring.HighLevelMetricNames", kHighLevelMetricNames),
    object("Capabilities.CA."),
    list("Capabilities.CA.CASystems", kCASystems),
    object("Capabilities.FrontEnd."),
    object("Capabilities.FrontEnd.IP."),
    number("Capabilities.FrontEnd.IP.MaxActiveIPStreams", 3),
    number("Capabilities.FrontEnd.IP.MaxActiveInboundIPStreams", 3),
    number("Capabilities.FrontEnd.IP.MaxActiveOutboundIPStreams", 0),
    list("Capabilities.FrontEnd.IP.StreamingControlProtocols", kStreamingControlProtocols),
    list("Capabilities.FrontEnd.IP.StreamingTransportProtocols", kStreamingTransportProtocols),
    text("Capabilities.FrontEnd.IP.StreamingTransportControlProtocols", ""),
    list("Capabilities.FrontEnd.IP.DownloadTransportProtocols", kDownloadTransportProtocols),
    list("Capabilities.FrontEnd.IP.MultiplexTypes", kMultiplexTypes),
    number("Components.FrontEndNumberOfEntries", 1),
    number("Components.AudioOutputNumberOfEntries", 2),
    number("Components.VideoOutputNumberOfEntries", 2),
    text("Components.FrontEnd.Status", "Enabled"),
    text("Components.FrontEnd.Name", "TV via ethernet"),
    object("Components.AudioDecoder."),
    text("Components.AudioDecoder.Status", "Enabled"),
    text("Components.AudioDecoder.Name", "Some audiodecoder"),
    text("Components.AudioDecoder.AudioStandard", "MPEG2-Part3-Layer3"),
    object("Components.VideoDecoder."),
    text("Components.VideoDecoder.Status", "Enabled"),
    text("Components.VideoDecoder.Name", "Some videodecoder"),
    text("Components.VideoDecoder.MPEG2Part2", ""),
    text("Components.VideoDecoder.MPEG4Part2",
         ".Capabilities.VideoDecoder.MPEG4Part2.ProfileLevel.1"),
    text("Components.VideoDecoder.MPEG4Part10", ""),
};

}  // namespace TR::StaticCapabilities
