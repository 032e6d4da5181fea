// trd-tree: looks at the parameter tree that a running daemon serves on the session bus.

#include "tests/support/TrClient.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// The last parameter that a first cycle creates: once it is there the tree is whole.
constexpr char kLastOfTheCycle[] = "Device.DeviceInfo.DeviceLog";
constexpr milliseconds kLook{100};

constexpr char kUsage[] =
    "Usage: trd-tree [OPTION]... wait|dump|list|count|extract|watch\n"
    "\n"
    "Looks at the parameter tree of a running daemon.\n"
    "\n"
    "  wait      return when the first update cycle is over\n"
    "  dump      print every parameter, one a line: address and value\n"
    "  list      print every address, objects too, one a line: address, writable or -, inform (in\n"
    "            every Inform) or -, object or parameter, and the value unless it is empty\n"
    "  count     print how many parameters there are\n"
    "  extract   print the more interesting parameters, in groups\n"
    "  watch     print each change as it happens, until SIGINT\n"
    "\n"
    "  --bus ADDRESS         the bus; DBUS_SESSION_BUS_ADDRESS otherwise\n"
    "  --deadline SECONDS    how long `wait` waits, 30 at first\n"
    "  --interval SECONDS    how often `watch` looks, 1 at first\n"
    "\n"
    "Control characters and backslashes in values show as escapes.\n"
    "The status is 1 when the daemon does not answer (in time), 2 for a wrong call.\n";

struct Options {
    std::string action;
    std::string bus;
    double deadlineSeconds = 30;
    double intervalSeconds = 1;
};

struct Parameter {
    std::string address;
    std::string value;
};
using Tree = std::vector<Parameter>;

volatile std::sig_atomic_t interrupted = 0;

int complain(const TrReply& failure) {
    std::fprintf(stderr, "trd-tree: %s: %s\n", failure.errorName.c_str(),
                 failure.errorText.c_str());
    return 1;
}

// One parameter is one line, whatever its value holds.
std::string oneLine(const std::string& value) {
    static const std::map<char, const char*> names = {
        {'\n', "\\n"}, {'\r', "\\r"}, {'\t', "\\t"}, {'\\', "\\\\"}};
    std::string line;
    for (const char c : value) {
        const auto byte = static_cast<unsigned char>(c);
        if (const auto name = names.find(c); name != names.end()) {
            line += name->second;
        } else if (byte < 0x20 || byte == 0x7f) {
            char escape[5];
            std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned>(byte));
            line += escape;
        } else {
            line += c;
        }
    }
    return line;
}

// Cuts between characters, not within one.
std::string shortened(const std::string& value, std::size_t limit) {
    if (value.size() <= limit) return value;
    std::size_t end = limit;
    while (end > 0 && (static_cast<unsigned char>(value[end]) & 0xc0U) == 0x80U) --end;
    return value.substr(0, end) + "... (" + std::to_string(value.size()) + " bytes)";
}

// Nothing when the daemon stopped answering on the way; `failure` has the reason.
std::optional<Tree> readTree(TrClient& client, TrReply& failure) {
    const TrReply list = client.listParametersOnly();
    if (!list.ok) {
        failure = list;
        return std::nullopt;
    }
    Tree tree;
    for (const std::string& address : list.list) {
        const TrReply value = client.getValue(address);
        if (!value.ok) {
            failure = value;
            return std::nullopt;
        }
        tree.push_back({address, value.text});
    }
    return tree;
}

bool cycleIsOver(TrClient& client) {
    const std::vector<std::string> list = client.listParametersOnly().list;
    return std::find(list.begin(), list.end(), kLastOfTheCycle) != list.end();
}

int waitForCycle(TrClient& client, const Options& options) {
    const auto deadline =
        steady_clock::now() + milliseconds(static_cast<long long>(options.deadlineSeconds * 1000));
    std::fprintf(stderr, "trd-tree: waiting for the first cycle\n");
    while (client.connected() && interrupted == 0) {
        if (!client.owner().empty() && cycleIsOver(client)) return 0;
        if (steady_clock::now() >= deadline) break;
        std::this_thread::sleep_for(kLook);
    }
    std::fprintf(stderr, "trd-tree: no first cycle%s\n",
                 client.connected() ? " in time" : ": the bus is gone");
    return 1;
}

int dump(TrClient& client, const Options&) {
    TrReply failure;
    const std::optional<Tree> tree = readTree(client, failure);
    if (!tree) return complain(failure);
    for (const Parameter& parameter : *tree)
        std::printf("%s %s\n", parameter.address.c_str(), oneLine(parameter.value).c_str());
    return 0;
}

// What the daemon says of one address; nothing when it stopped answering, `failure` has the reason.
std::optional<std::string> listLine(TrClient& client, const std::string& address, bool isParameter,
                                    TrReply& failure) {
    const TrReply writable = client.getWritable(address);
    const TrReply inform = client.getForcedInform(address);
    const TrReply value = client.getValue(address);
    for (const TrReply* reply : {&writable, &inform, &value}) {
        if (!reply->ok) {
            failure = *reply;
            return std::nullopt;
        }
    }
    return address + (writable.text == "1" ? " writable" : " -") +
           (inform.text == "1" ? " inform" : " -") + (isParameter ? " parameter" : " object") +
           (value.text.empty() ? "" : " " + oneLine(value.text));
}

int list(TrClient& client, const Options&) {
    const TrReply addresses = client.listAddresses();
    const TrReply parameters = client.listParametersOnly();
    if (!addresses.ok || !parameters.ok) return complain(addresses.ok ? parameters : addresses);
    const std::set<std::string> isParameter(parameters.list.begin(), parameters.list.end());
    for (const std::string& address : addresses.list) {
        TrReply failure;
        const auto line = listLine(client, address, isParameter.count(address) != 0, failure);
        if (!line) return complain(failure);
        std::printf("%s\n", line->c_str());
    }
    return 0;
}

int count(TrClient& client, const Options&) {
    const TrReply list = client.listParametersOnly();
    if (!list.ok) return complain(list);
    std::printf("%zu\n", list.list.size());
    return 0;
}

struct Group {
    const char* title;
    const char* prefix;
    std::vector<const char*> names;
};

const std::vector<Group>& groups() {
    static const std::vector<Group> all = {
        {"The box",
         "Device.DeviceInfo.",
         {"Description", "Manufacturer", "ManufacturerOUI", "SerialNumber", "HardwareVersion",
          "SoftwareVersion", "ProvisioningCode", "X_Kelm_ChipID", "UpTime", "MemoryStatus.Total",
          "MemoryStatus.Free", "ProcessStatus.ProcessNumberOfEntries",
          "TemperatureStatus.TemperatureSensor.1.Value", "DeviceLog"}},
        {"Interface 1",
         "Device.IP.Interface.1.",
         {"Name", "Status", "IPv4Address.1.IPAddress", "IPv4Address.1.SubnetMask",
          "Stats.BytesReceived", "Stats.BytesSent"}},
        {"Interface 2",
         "Device.IP.Interface.2.",
         {"Name", "Status", "IPv4Address.1.IPAddress", "IPv4Address.1.SubnetMask",
          "Stats.BytesReceived", "Stats.BytesSent"}},
        {"Ethernet 1",
         "Device.Ethernet.Interface.1.",
         {"Name", "Status", "MACAddress", "MaxBitRate", "DuplexMode"}},
        {"WiFi",
         "Device.Services.STBService.1.X_Kelm.",
         {"WiFiStatus.SSID", "WiFiStatus.BSSID", "WiFiStatus.Frequency", "WiFiStatus.Signal",
          "WiFiStatus.BitRate", "Config.WiFiConfig.SSID"}},
        {"Settings",
         "Device.Services.STBService.1.X_Kelm.Config.",
         {"UpdateType", "UpdateServer", "TimeZone", "ProvisionServer", "SyslogHost"}},
        {"Multicast",
         "Device.Services.STBService.1.Components.FrontEnd.1.IP.IGMP.",
         {"Status", "ClientVersion", "MaximumNumberOfConcurrentGroups",
          "ClientGroupNumberOfEntries", "ClientGroup.1.GroupAddress", "ClientGroup.1.UpTime"}},
        {"Service monitoring",
         "Device.Services.STBService.1.ServiceMonitoring.",
         {"SampleEnable", "SampleState", "SampleInterval", "ReportSamples", "MainStream.1.Status",
          "MainStream.1.Total.MPEG2TSStats.PacketDiscontinuityCounter"}},
        {"Capabilities",
         "Device.Services.STBService.1.Capabilities.",
         {"VideoDecoder.VideoStandards", "AudioDecoder.AudioStandards",
          "FrontEnd.IP.MaxActiveIPStreams"}},
    };
    return all;
}

// What the daemon does not have is left out, a group without anything too.
int extract(TrClient& client, const Options&) {
    TrReply failure;
    const std::optional<Tree> tree = readTree(client, failure);
    if (!tree) return complain(failure);
    std::map<std::string, std::string> values;
    for (const Parameter& parameter : *tree) values[parameter.address] = parameter.value;
    for (const Group& group : groups()) {
        bool titled = false;
        for (const char* name : group.names) {
            const auto found = values.find(std::string(group.prefix) + name);
            if (found == values.end()) continue;
            if (!titled) {
                std::printf("%s  (%s)\n", group.title, group.prefix);
                titled = true;
            }
            std::printf("  %-58s %s\n", name, shortened(oneLine(found->second), 60).c_str());
        }
    }
    return 0;
}

void printChange(const std::string& address, const std::string& before, const std::string& after) {
    char clock[16] = "";
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    std::strftime(clock, sizeof clock, "%H:%M:%S", localtime_r(&now, &local));
    std::printf("%s %s: %s -> %s\n", clock, address.c_str(), shortened(before, 200).c_str(),
                shortened(after, 200).c_str());
}

void printChanges(const std::map<std::string, std::string>& before,
                  const std::map<std::string, std::string>& after) {
    for (const auto& [address, value] : after) {
        const auto old = before.find(address);
        if (old == before.end())
            printChange(address, "(none)", oneLine(value));
        else if (old->second != value)
            printChange(address, oneLine(old->second), oneLine(value));
    }
    for (const auto& [address, value] : before)
        if (after.count(address) == 0) printChange(address, oneLine(value), "(gone)");
    std::fflush(stdout);
}

int watch(TrClient& client, const Options& options) {
    const milliseconds interval(static_cast<long long>(options.intervalSeconds * 1000));
    std::optional<std::map<std::string, std::string>> before;
    while (interrupted == 0) {
        TrReply failure;
        const std::optional<Tree> tree = readTree(client, failure);
        if (interrupted != 0) break;
        if (!tree) return complain(failure);
        std::map<std::string, std::string> after;
        for (const Parameter& parameter : *tree) after[parameter.address] = parameter.value;
        if (before) printChanges(*before, after);
        before = std::move(after);
        // In short steps, as SIGINT does not end a sleep.
        const auto next = steady_clock::now() + interval;
        while (interrupted == 0 && steady_clock::now() < next)
            std::this_thread::sleep_for(std::min(kLook, interval));
    }
    return 0;
}

struct Action {
    const char* name;
    int (*run)(TrClient&, const Options&);
};

constexpr Action kActions[] = {{"wait", waitForCycle}, {"dump", dump},       {"list", list},
                               {"count", count},       {"extract", extract}, {"watch", watch}};

const Action* findAction(const std::string& name) {
    for (const Action& action : kActions)
        if (name == action.name) return &action;
    return nullptr;
}

bool readSeconds(const std::string& text, double& seconds) {
    char* end = nullptr;
    errno = 0;
    seconds = std::strtod(text.c_str(), &end);
    return errno == 0 && end != text.c_str() && *end == '\0' && seconds >= 0 && seconds <= 1e6;
}

bool takeOption(const std::string& name, const std::string& value, Options& options) {
    if (name == "--bus") {
        options.bus = value;
        return true;
    }
    if (name == "--deadline") return readSeconds(value, options.deadlineSeconds);
    return name == "--interval" && readSeconds(value, options.intervalSeconds);
}

// Nothing for a wrong call.
std::optional<Options> parse(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument.rfind("--", 0) == 0) {
            if (i + 1 >= arguments.size() || !takeOption(argument, arguments[i + 1], options))
                return std::nullopt;
            ++i;
        } else if (options.action.empty()) {
            options.action = argument;
        } else {
            return std::nullopt;
        }
    }
    return findAction(options.action) != nullptr ? std::optional(options) : std::nullopt;
}

std::string sessionBus() {
    // One thread, and nobody sets a variable; NOLINTNEXTLINE(concurrency-mt-unsafe)
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    return address != nullptr ? address : "";
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (std::find(arguments.begin(), arguments.end(), "--help") != arguments.end()) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    const std::optional<Options> options = parse(arguments);
    if (!options) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    std::signal(SIGINT, [](int) { interrupted = 1; });
    TrClient client(options->bus.empty() ? sessionBus() : options->bus);
    if (!client.connected()) return complain(client.connectError());
    return findAction(options->action)->run(client, *options);
}
