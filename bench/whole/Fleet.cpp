#include "bench/whole/Fleet.h"

#include "tests/support/Box.h"
#include "tests/support/Talker.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <thread>

namespace bench {

namespace {

using std::chrono::milliseconds;

constexpr char kAddress[] = "Device.DeviceInfo.Manufacturer";
constexpr char kValue[] = "KELM";
constexpr char kNamesFile[] = "/tmp/names";
constexpr char kCallLogs[] = "/run/kelm-box/log";

// The stand-in commands log their calls: a log that grows is a cycle under way.
std::uintmax_t loggedBytes() {
    std::uintmax_t bytes = 0;
    for (const auto& log : std::filesystem::directory_iterator(kCallLogs)) bytes += log.file_size();
    return bytes;
}

// A daemon that does not get its name logs under which one it serves.
std::string uniqueName(const Child& daemon) {
    const std::string marker = "serving as ";
    std::string name;
    box::waitUntil([&] {
        const std::string output = daemon.output();
        const std::size_t found = output.find(marker);
        if (found == std::string::npos) return false;
        const std::size_t start = found + marker.size();
        name = output.substr(start, output.find(' ', start) - start);
        return true;
    });
    return name;
}

}  // namespace

void fail(const std::string& why) {
    std::fprintf(stderr, "trd-bench: %s\n", why.c_str());
    std::exit(EXIT_FAILURE);
}

void Service::ping() const {
    if (!client->call({"org.freedesktop.DBus.Peer", "Ping"}).ok) fail("a Ping failed");
}

void Service::get() const {
    if (client->getValue(kAddress).text != kValue) fail("a wrong value");
}

void Service::list(std::size_t expected) const {
    if (client->listAddresses().list.size() != expected) fail("a wrong list");
}

void Service::getMany() const {
    std::vector<TrClient::Pending> calls;
    for (int i = 0; i < kInFlight; ++i) calls.push_back(client->sendGetValue(kAddress));
    for (const auto& call : calls) {
        dbus_pending_call_block(call.get());
        DBusMessage* const reply = dbus_pending_call_steal_reply(call.get());
        if (dbus_message_get_type(reply) != DBUS_MESSAGE_TYPE_METHOD_RETURN) fail("a call failed");
        dbus_message_unref(reply);
    }
}

Service startDaemon(const PrivateBus& bus, const std::string& output) {
    Service service;
    service.process = std::make_unique<Child>(std::vector<std::string>{KELM_TRD_PROGRAM}, output);
    service.client = std::make_unique<TrClient>(bus.address());
    if (!waitForFirstCycle(*service.client)) fail("no first cycle");
    return service;
}

Fleet::Fleet() : daemon(startDaemon(bus_, "/tmp/daemon-output")) {
    startFull();
    startReferences();
}

void Fleet::startFull() {
    full.process =
        std::make_unique<Child>(std::vector<std::string>{KELM_TRD_PROGRAM}, "/tmp/full-output");
    full.client = std::make_unique<TrClient>(bus_.address(), uniqueName(*full.process));
    if (!waitForFirstCycle(*full.client)) fail("no first cycle");
}

// Asking whether an unknown parameter can be written gives it an entry.
std::vector<std::string> Fleet::fill() {
    std::vector<std::string> names = daemon.client->listAddresses().list;
    for (std::size_t i = 0; names.size() < kManyParameters; ++i) {
        names.push_back("Device.Services.STBService.1.Bench." + std::to_string(10'000 + i) +
                        ".Value");
        if (full.client->getWritable(names.back()).text != "0") fail("no new entry");
    }
    std::sort(names.begin(), names.end());
    return names;
}

void Fleet::startReferences() {
    std::string lines;
    for (const std::string& name : fill()) lines += name + "\n";
    box::writeFile(kNamesFile, lines);
    dbuscxx =
        start({DBUSCXX_PROGRAM, "com.kelm.bench.DbusCxx", kNamesFile}, "com.kelm.bench.DbusCxx");
    sdbus = start({SDBUS_PROGRAM, "com.kelm.bench.SdBus"}, "com.kelm.bench.SdBus");
}

Service Fleet::start(const std::vector<std::string>& command, const std::string& name) const {
    Service service;
    service.process = std::make_unique<Child>(command, "/tmp/" + name);
    service.client = std::make_unique<TrClient>(bus_.address(), name);
    if (!box::waitUntil([&] { return service.client->getValue(kAddress).ok; }))
        fail(name + " does not answer: " + service.process->output());
    return service;
}

void Fleet::waitForQuiet() {
    constexpr milliseconds kQuiet{500};
    const std::uintmax_t before = loggedBytes();
    if (!box::waitUntil([&] { return loggedBytes() > before; })) fail("no cycle");
    do {
        loggedBytes_ = loggedBytes();
        std::this_thread::sleep_for(kQuiet);
    } while (isCycleUnderWay());
}

bool Fleet::isCycleUnderWay() const {
    return loggedBytes() != loggedBytes_;
}

void Fleet::stopReferences() {
    dbuscxx = {};
    sdbus = {};
    full = {};
}

}  // namespace bench
