#include "model/NotifTable.h"
#include "providers/DeviceInfoDataProvider.h"
#include "providers/FrontEndParsing.h"
#include "providers/NetworkText.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

void notificationLine(benchmark::State& state) {
    const std::string line = R"({ "parameter": "Device.DeviceInfo.UpTime", "value": "4711", )"
                             R"("notification": "1", "type": "xsd:string" })";
    std::string parameter, value, notification, type;
    for (auto _ : state) {
        TR::NotifTable::parseJsonLine(line, parameter, value, notification, type);
        benchmark::DoNotOptimize(type);
    }
}
BENCHMARK(notificationLine);

void iwLink(benchmark::State& state) {
    const std::vector<std::string> lines = {
        "Connected to 00:1a:2b:3c:4d:60 (on wlan0)\n",
        "\tSSID: living room\n",
        "\tfreq: 5180\n",
        "\tRX: 812345 bytes (4711 packets)\n",
        "\tTX: 54321 bytes (815 packets)\n",
        "\tsignal: -45 dBm\n",
        "\ttx bitrate: 780.0 MBit/s VHT-MCS 8 80MHz VHT-NSS 2\n"};
    for (auto _ : state) benchmark::DoNotOptimize(TR::NetworkText::wiFiStatus(lines));
}
BENCHMARK(iwLink);

void netstat(benchmark::State& state) {
    std::vector<std::string> lines(
        50, "udp        0      0 192.168.1.20:68         0.0.0.0:*                           \n");
    lines.emplace_back(
        "udp        0      0 239.1.2.3:5000          0.0.0.0:*                           \n");
    for (auto _ : state) benchmark::DoNotOptimize(TR::Igmp::groupAddresses(lines));
}
BENCHMARK(netstat)->Unit(benchmark::kMicrosecond);

void memInfo(benchmark::State& state) {
    const std::string text = "MemTotal:        1012345 kB\nMemFree:          201344 kB\n";
    for (auto _ : state) benchmark::DoNotOptimize(TR::DeviceInfo::memoryStatus(text, "MemFree:"));
}
BENCHMARK(memInfo);

}  // namespace
