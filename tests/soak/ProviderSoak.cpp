// provider_soak CYCLES: that many cycles of every provider, one after the other without the five
// seconds between them, with sources that change all the time. Runs in the box, whose commands it
// replaces by fast ones. Ends with 1 when memory, descriptors or threads are not flat.

#include "model/Storage.h"
#include "providers/DeviceInfoDataProvider.h"
#include "providers/FrontEndDataProvider.h"
#include "providers/NetworkDataProvider.h"
#include "providers/StaticDataProvider.h"
#include "servicemonitoring/ServiceMonitoring.h"
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

class AllProviders {
  public:
    AllProviders() {
        static_.updateValues();
        monitoring_.init();
        frontEnd_.init();
        deviceInfo_.init();
        write(kMonitoring + "MainStream.1.Enable", "1");
        write(kMonitoring + "SampleInterval", "10");
        write(kMonitoring + "SampleEnable", "1");
        watchEverything();
    }

    void cycle() {
        network_.updateValues();
        monitoring_.updateValues();
        frontEnd_.updateValues();
        deviceInfo_.updateValues();
        storage_.getNotifTable().tryTriggerNotify(storage_.updates());
        storage_.clearUpdates();
    }

    std::size_t addresses() const { return storage_.listAddresses().size(); }

  private:
    void write(const std::string& address, const std::string& text) {
        const pthread_helper::scoped_lock lock(storage_.getStorageMutex());
        storage_[Address(address)].setByUserWithConversion(text);
    }

    void watchEverything() {
        network_.updateValues();
        monitoring_.updateValues();
        deviceInfo_.updateValues();
        std::vector<std::string> parameters;
        for (const Address& address : storage_.listParametersOnly())
            parameters.push_back(address.get());
        box::writeNotificationFile(parameters);
        const pthread_helper::scoped_lock lock(storage_.getNotifTable().getMutex());
        storage_.getNotifTable().update();
    }

    TR::Storage storage_;
    TR::StaticDataProvider static_{&storage_};
    TR::NetworkDataProvider network_{&storage_};
    TR::ServiceMonitoring monitoring_{&storage_};
    TR::FrontEndDataProvider frontEnd_{&storage_};
    TR::DeviceInfoDataProvider deviceInfo_{&storage_};
};

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::size_t cycles = argumentCount > 1 ? std::strtoul(arguments[1], nullptr, 10) : 10000;
    makeCommandsFast();
    AllProviders providers;
    FlatCheck check("cycles");
    const std::size_t step = cycles < kSamples ? 1 : cycles / kSamples;
    for (std::size_t cycle = 1; cycle <= cycles; ++cycle) {
        changeSources(cycle);
        providers.cycle();
        if (cycle % step != 0) continue;
        check.add(cycle, vitalsOf(getpid()), std::to_string(providers.addresses()) + " addresses");
    }
    return check.isFlat() ? 0 : 1;
}
