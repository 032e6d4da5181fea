#include "cwmp/Types.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string_view>

namespace cwmp {

namespace {

struct TypeRow {
    std::string_view parameter;  ///< {i} stands for every instance number
    Xsd type;
};

// Whatever is not listed is a string. Sorted by name, byte by byte.
constexpr TypeRow kTypes[] = {
    {"Device.DeviceInfo.MemoryStatus.Free", Xsd::UnsignedInt},
    {"Device.DeviceInfo.MemoryStatus.Total", Xsd::UnsignedInt},
    {"Device.DeviceInfo.ProcessStatus.ProcessNumberOfEntries", Xsd::UnsignedInt},
    {"Device.DeviceInfo.TemperatureStatus.TemperatureSensor.{i}.Value", Xsd::Int},
    {"Device.DeviceInfo.UpTime", Xsd::UnsignedInt},
    {"Device.Ethernet.Interface.{i}.Enable", Xsd::Boolean},
    {"Device.Ethernet.Interface.{i}.LastChange", Xsd::UnsignedInt},
    {"Device.Ethernet.Interface.{i}.MaxBitRate", Xsd::Int},
    {"Device.Ethernet.Interface.{i}.Stats.BroadcastPacketsReceived", Xsd::UnsignedLong},
    {"Device.Ethernet.Interface.{i}.Stats.BroadcastPacketsSent", Xsd::UnsignedLong},
    {"Device.Ethernet.Interface.{i}.Stats.BytesReceived", Xsd::UnsignedLong},
    {"Device.Ethernet.Interface.{i}.Stats.BytesSent", Xsd::UnsignedLong},
    {"Device.Ethernet.Interface.{i}.Stats.DiscardPacketsReceived", Xsd::UnsignedInt},
    {"Device.Ethernet.Interface.{i}.Stats.DiscardPacketsSent", Xsd::UnsignedInt},
    {"Device.Ethernet.Interface.{i}.Stats.ErrorsReceived", Xsd::UnsignedInt},
    {"Device.Ethernet.Interface.{i}.Stats.ErrorsSent", Xsd::UnsignedInt},
    {"Device.Ethernet.Interface.{i}.Stats.MulticastPacketsReceived", Xsd::UnsignedLong},
    {"Device.Ethernet.Interface.{i}.Stats.MulticastPacketsSent", Xsd::UnsignedLong},
    {"Device.Ethernet.Interface.{i}.Stats.PacketsReceived", Xsd::UnsignedLong},
    {"Device.Ethernet.Interface.{i}.Stats.PacketsSent", Xsd::UnsignedLong},
    {"Device.Ethernet.Interface.{i}.Stats.UnicastPacketsReceived", Xsd::UnsignedLong},
    {"Device.Ethernet.Interface.{i}.Stats.UnicastPacketsSent", Xsd::UnsignedLong},
    {"Device.Ethernet.Interface.{i}.Stats.UnknownProtoPacketsReceived", Xsd::UnsignedInt},
    {"Device.Ethernet.Interface.{i}.Upstream", Xsd::Boolean},
    {"Device.IP.Interface.{i}.Enable", Xsd::Boolean},
    {"Device.IP.Interface.{i}.IPv4AddressNumberOfEntries", Xsd::UnsignedInt},
    {"Device.IP.Interface.{i}.LastChange", Xsd::UnsignedInt},
    {"Device.IP.Interface.{i}.Stats.BroadcastPacketsReceived", Xsd::UnsignedLong},
    {"Device.IP.Interface.{i}.Stats.BroadcastPacketsSent", Xsd::UnsignedLong},
    {"Device.IP.Interface.{i}.Stats.BytesReceived", Xsd::UnsignedLong},
    {"Device.IP.Interface.{i}.Stats.BytesSent", Xsd::UnsignedLong},
    {"Device.IP.Interface.{i}.Stats.DiscardPacketsReceived", Xsd::UnsignedInt},
    {"Device.IP.Interface.{i}.Stats.DiscardPacketsSent", Xsd::UnsignedInt},
    {"Device.IP.Interface.{i}.Stats.ErrorsReceived", Xsd::UnsignedInt},
    {"Device.IP.Interface.{i}.Stats.ErrorsSent", Xsd::UnsignedInt},
    {"Device.IP.Interface.{i}.Stats.MulticastPacketsReceived", Xsd::UnsignedLong},
    {"Device.IP.Interface.{i}.Stats.MulticastPacketsSent", Xsd::UnsignedLong},
    {"Device.IP.Interface.{i}.Stats.PacketsReceived", Xsd::UnsignedLong},
    {"Device.IP.Interface.{i}.Stats.PacketsSent", Xsd::UnsignedLong},
    {"Device.IP.Interface.{i}.Stats.UnicastPacketsReceived", Xsd::UnsignedLong},
    {"Device.IP.Interface.{i}.Stats.UnicastPacketsSent", Xsd::UnsignedLong},
    {"Device.IP.Interface.{i}.Stats.UnknownProtoPacketsReceived", Xsd::UnsignedInt},
    {"Device.ManagementServer.PeriodicInformEnable", Xsd::Boolean},
    {"Device.ManagementServer.PeriodicInformInterval", Xsd::UnsignedInt},
    {"Device.ManagementServer.PeriodicInformTime", Xsd::DateTime},
    {"Device.Services.STBService.{i}.Capabilities.AudioOutput.{i}.Audiolevel", Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Capabilities.AudioOutput.{i}.CancelMute", Xsd::Boolean},
    {"Device.Services.STBService.{i}.Capabilities.FrontEnd.IP.MaxActiveIPStreams", Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.FrontEnd.IP.MaxActiveInboundIPStreams", Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.FrontEnd.IP.MaxActiveOutboundIPStreams",
     Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.MaxActiveAVPlayers", Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.MaxActiveAVStreams", Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.PVR.MaxIOStreams", Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.PVR.MaxPlaybackStreams", Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.PVR.MaxRecordingStreams", Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.PVR.MaxTimeDelay", Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.ServiceMonitoring.MaxActiveMainStreams",
     Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.ServiceMonitoring.MaxReportSamples", Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.ServiceMonitoring.MinSampleInterval", Xsd::Int},
    {"Device.Services.STBService.{i}.Capabilities.VideoDecoder.MPEG2Part2.ProfileLevel.{i}."
     "MaximumDecodingCapability",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Capabilities.VideoDecoder.MPEG2Part2."
     "ProfileLevelNumberOfEntries",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Capabilities.VideoDecoder.MPEG4Part10.ProfileLevel.{i}."
     "MaximumDecodingCapability",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Capabilities.VideoDecoder.MPEG4Part10."
     "ProfileLevelNumberOfEntries",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Capabilities.VideoDecoder.MPEG4Part2.ProfileLevel.{i}."
     "MaximumDecodingCapability",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Capabilities.VideoDecoder.MPEG4Part2."
     "ProfileLevelNumberOfEntries",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Components.AudioOutputNumberOfEntries", Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Components.FrontEnd.{i}.IP.IGMP.ClientGroupNumberOfEntries",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Components.FrontEnd.{i}.IP.IGMP."
     "ClientGroupStatsNumberOfEntries",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Components.FrontEnd.{i}.IP.IGMP.DSCPMark", Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Components.FrontEnd.{i}.IP.IGMP.Enable", Xsd::Boolean},
    {"Device.Services.STBService.{i}.Components.FrontEnd.{i}.IP.IGMP.EthernetPriorityMark",
     Xsd::Int},
    {"Device.Services.STBService.{i}.Components.FrontEnd.{i}.IP.IGMP.LoggingEnable", Xsd::Boolean},
    {"Device.Services.STBService.{i}.Components.FrontEnd.{i}.IP.IGMP."
     "MaximumNumberOfConcurrentGroups",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Components.FrontEnd.{i}.IP.IGMP.MaximumNumberOfTrackedGroups",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Components.FrontEnd.{i}.IP.IGMP.VLANIDMark", Xsd::Int},
    {"Device.Services.STBService.{i}.Components.FrontEndNumberOfEntries", Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Components.VideoOutputNumberOfEntries", Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.Enable", Xsd::Boolean},
    {"Device.Services.STBService.{i}.ServiceMonitoring.FetchSamples", Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.ForceSample", Xsd::Boolean},
    {"Device.Services.STBService.{i}.ServiceMonitoring.MainStream.{i}.Enable", Xsd::Boolean},
    {"Device.Services.STBService.{i}.ServiceMonitoring.MainStream.{i}.Total.AudioDecoderStats."
     "DecodedFrames",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.MainStream.{i}.Total.AudioDecoderStats."
     "DecodingErrors",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.MainStream.{i}.Total.MPEG2TSStats."
     "PacketDiscontinuityCounter",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.MainStream.{i}.Total.Reset", Xsd::Boolean},
    {"Device.Services.STBService.{i}.ServiceMonitoring.MainStream.{i}.Total.ResetTime",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.MainStream.{i}.Total.VideoDecoderStats."
     "DecodedFrames",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.MainStream.{i}.Total.VideoDecoderStats."
     "FrameRate",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.MainStream.{i}.Total.VideoDecoderStats."
     "LostFrames",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.MainStreamNumberOfEntries",
     Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.ReportEndTime", Xsd::DateTime},
    {"Device.Services.STBService.{i}.ServiceMonitoring.ReportSamples", Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.ReportStartTime", Xsd::DateTime},
    {"Device.Services.STBService.{i}.ServiceMonitoring.SampleEnable", Xsd::Boolean},
    {"Device.Services.STBService.{i}.ServiceMonitoring.SampleInterval", Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.ServiceMonitoring.TimeReference", Xsd::DateTime},
    {"Device.Services.STBService.{i}.X_Kelm.WiFiStatus.BitRate", Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.X_Kelm.WiFiStatus.Frequency", Xsd::UnsignedInt},
    {"Device.Services.STBService.{i}.X_Kelm.WiFiStatus.Signal", Xsd::Int},
};

constexpr const char* kNames[] = {"xsd:string",      "xsd:boolean",      "xsd:int",
                                  "xsd:unsignedInt", "xsd:unsignedLong", "xsd:dateTime"};

constexpr std::string_view kTriggers[] = {"ServiceMonitoring.ForceSample", ".Total.Reset"};
constexpr std::string_view kSecrets[] = {"Passphrase", "Password"};

bool isNumber(std::string_view component) {
    return !component.empty() &&
           std::all_of(
               component.begin(), component.end(),
               [](char letter) { return std::isdigit(static_cast<unsigned char>(letter)) != 0; });
}

// With {i} in the place of each instance number.
std::string generic(std::string_view parameter) {
    std::string result;
    result.reserve(parameter.size());
    while (!parameter.empty()) {
        const std::size_t end = std::min(parameter.find('.'), parameter.size());
        const std::string_view component = parameter.substr(0, end);
        result += isNumber(component) ? "{i}" : component;
        if (end < parameter.size()) result += '.';
        parameter.remove_prefix(std::min(end + 1, parameter.size()));
    }
    return result;
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

template <std::size_t count>
bool endsWithOneOf(const std::string& text, const std::string_view (&ends)[count]) {
    return std::any_of(
        std::begin(ends), std::end(ends),
        [&](std::string_view end) { return endsWith(text, end); });
}

}  // namespace

const char* xsdName(Xsd type) {
    return kNames[static_cast<int>(type)];
}

Xsd typeOf(const std::string& parameter) {
    const std::string name = generic(parameter);
    const auto row = std::lower_bound(
        std::begin(kTypes), std::end(kTypes), name,
        [](const TypeRow& one, const std::string& other) { return one.parameter < other; });
    return row != std::end(kTypes) && row->parameter == name ? row->type : Xsd::String;
}

bool isSecret(const std::string& parameter) {
    return endsWithOneOf(parameter, kSecrets);
}

bool isTrigger(const std::string& parameter) {
    return endsWithOneOf(parameter, kTriggers);
}

bool isBehindShell(const std::string& parameter) {
    return parameter == "Device.DeviceInfo.ProvisioningCode";
}

}  // namespace cwmp
