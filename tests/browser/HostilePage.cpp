#include "trctl/ReportPage.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int kManyLeaves = 10'000;

// What a box in the field, or somebody on its network, may put into a value.
const client::Values kHostile = {
    {"Device.DeviceInfo.Description",
     "<img src=http://127.0.0.1:9/a onerror=\"document.title='hit'\">"},
    {"Device.DeviceInfo.SerialNumber", "</script><script>document.title='hit'</script>"},
    {"Device.DeviceInfo.UpTime", "93784"},
    {"Device.Ethernet.Interface.1.Name", "eth0"},
    {"Device.Ethernet.Interface.1.Stats.BytesReceived", "1250000"},
    {"Device.Ethernet.Interface.1.Stats.BytesSent", "77"},
    {"Device.Ethernet.Interface.1.Status", "Up"},
    {"Device.IP.Interface.1.IPv4Address.1.IPAddress", "192.168.1.20"},
    {"Device.IP.Interface.1.Name", "eth0"},
    {"Device.Hostile.<b>bold</b>", "a name may be hostile too"},
    {"Device.Hostile.Control",
     "a\x1b[31m\x07\r\n\x7f"
     "b"},
    {"Device.Hostile.Entity", "&lt;b&gt; <!-- <script> {{nonce}} {{data}}"},
    {"Device.Hostile.Separator", "one\u2028two\u2029three\u202efour"},
    {"Device.Hostile.__proto__", "not a prototype"},
    {"Device.Hostile.Long", std::string(5000, 'x') + "</pre>end"},
    {"Device.Secret.KeyPassphrase", "correct horse"},
    {"Device.Secret.Log", "key is correct horse."}};

}  // namespace

// Prints a page of hostile values, as `trctl report` makes it; with an argument, one of many
// values.
int main(int argc, char**) {
    trctl::Report report;
    report.program = "trctl";
    report.made = "2026-11-21T19:56:38Z";
    report.source = "Box <stb>";
    report.seconds = 10;
    report.values = kHostile;
    for (int i = 0; argc > 1 && i < kManyLeaves; ++i)
        report.values.emplace_back(
            "Device.Many." + std::to_string(i / 100) + ".Leaf" + std::to_string(i),
            std::to_string(i));
    report.values = trctl::withoutSecrets(report.values);
    report.series["Device.Ethernet.Interface.1.Stats.BytesReceived"] = {
        {0, "0"}, {3000, "625000"}, {8000, "1250000"}};
    report.series["Device.Ethernet.Interface.1.Status"] = {{0, "Down"}, {4000, "<i>Up</i>"}};
    report.series["Device.DeviceInfo.UpTime"] = {{0, "93779"}, {3000, "93784"}};
    const std::string page = trctl::reportPage(report, "0123456789abcdef0123456789abcdef");
    return std::fwrite(page.data(), 1, page.size(), stdout) == page.size() ? EXIT_SUCCESS
                                                                           : EXIT_FAILURE;
}
