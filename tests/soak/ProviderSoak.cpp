// provider_soak CYCLES: that many cycles of every provider, one after the other without the five
// seconds between them, with sources that change all the time. Runs in the box, whose commands it
// replaces by fast ones. Ends with 1 when memory, descriptors or threads are not flat.

#include "daemon/Worker.h"
#include "model/Storage.h"
#include "tests/soak/FlatCheck.h"
#include "tests/support/Box.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using TR::Address;

constexpr std::size_t kSamples = 20;
const std::string kMonitoring = "Device.Services.STBService.1.ServiceMonitoring.";

void makeCommandsFast() {
    for (const char* command : {"iw", "ps", "netstat", "uci", "ubus", "sysctl", "chipid_tool"}) {
        const std::string path = std::string("/usr/bin/") + command;
        fs::remove(path);
        fs::create_symlink(KELM_FAST_COMMAND, path);
    }
}

// All that a box's sources do in its life: counters grow, links come and go, logs are rotated.
void changeSources(std::size_t cycle) {
    box::writeFile("/sys/class/tsdemux/discontinue_counter", std::to_string(cycle * 7 % 1000));
    box::writeFile("/sys/class/thermal/thermal_zone0/temp", std::to_string(50000 + cycle % 9000));
    box::writeFile("/sys/class/net/eth0/speed", cycle % 50 == 0 ? "-1\n" : "1000\n");
    box::writeFile("/sys/class/net/eth0/operstate", cycle % 50 == 0 ? "down\n" : "up\n");
    box::writeFile("/tmp/syslog", std::string(cycle * 61 % 100000, 'x') + "\n");
    box::writeFile("/var/kelm/network.wlan0", "wifi_ssid=" + std::string(cycle % 32, 's') + "\n");
}

void write(TR::Storage& storage, const std::string& address, const std::string& text) {
    const pthread_helper::scoped_lock lock(storage.getStorageMutex());
    storage[Address(address)].setByUserWithConversion(text);
}

void switchMonitoringOn(TR::Storage& storage) {
    write(storage, kMonitoring + "MainStream.1.Enable", "1");
    write(storage, kMonitoring + "SampleInterval", "10");
    write(storage, kMonitoring + "SampleEnable", "1");
}

void watchEverything(TR::Storage& storage) {
    std::vector<std::string> parameters;
    for (const Address& address : storage.listParametersOnly()) parameters.push_back(address.get());
    box::writeNotificationFile(parameters);
    const pthread_helper::scoped_lock lock(storage.getNotifTable().getMutex());
    storage.getNotifTable().update();
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::size_t cycles = argumentCount > 1 ? std::strtoul(arguments[1], nullptr, 10) : 10000;
    makeCommandsFast();
    TR::Storage storage;
    TR::Worker worker(&storage);  // not started: its steps are taken here, without a pause
    worker.createProviders();
    worker.initProviders();
    worker.runCycle();
    switchMonitoringOn(storage);
    watchEverything(storage);
    FlatCheck check("cycles");
    const std::size_t step = cycles < kSamples ? 1 : cycles / kSamples;
    for (std::size_t cycle = 1; cycle <= cycles; ++cycle) {
        changeSources(cycle);
        worker.runCycle();
        if (cycle % step != 0) continue;
        check.add(cycle, vitalsOf(getpid()),
                  std::to_string(storage.listAddresses().size()) + " addresses");
    }
    return check.isFlat() ? 0 : 1;
}
