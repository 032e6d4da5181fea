#include "tests/support/Talker.h"

#include "tests/support/Box.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr char kLastOfTheCycle[] = "Device.DeviceInfo.DeviceLog";

constexpr KnownParameter kKnown[] = {
    {"Device.DeviceInfo.Manufacturer", "KELM"},
    {"Device.DeviceInfo.SerialNumber", "001A2B3C4D5E"},
    {"Device.DeviceInfo.ManufacturerOUI", "001A2B"},
    {"Device.IP.Interface.1.Name", "eth0"},
    {"Device.IP.Interface.2.Name", "wlan0"},
    {"Device.Nothing", ""},
    {"Device.DeviceInfo.ProductClass", "STB"},
};

constexpr const char* kSettings[] = {"UpdateType", "UpdateServer", "TimeZone", "ProvisionServer"};

}  // namespace

bool waitForFirstCycle(TrClient& client, std::chrono::milliseconds deadline) {
    return box::waitUntil(
        [&] {
            const auto list = client.listParametersOnly().list;
            return std::find(list.begin(), list.end(), kLastOfTheCycle) != list.end();
        },
        deadline);
}

const KnownParameter& knownParameter(std::size_t number) {
    return kKnown[number % std::size(kKnown)];
}

void Talker::talkOnce() {
    const KnownParameter& known = knownParameter(number_ + round_);
    expect(client_.getValue(known.address).text == known.text);
    expect(!client_.listParametersOnly().list.empty());
    expect(client_.checkValueChange().ok);
    if (round_ % 100 == 0) expect(client_.updateNotifTable().ok);
    if (number_ < std::size(kSettings))
        write(std::string("Device.Services.STBService.1.X_Kelm.Config.") + kSettings[number_]);
    else
        expect(client_.getValue(knownParameter(round_).address).ok);
    ++round_;
}

void Talker::expect(bool isRight) {
    ++calls_;
    if (!isRight) ++mistakes_;
}

void Talker::write(const std::string& address) {
    const std::string mine = std::to_string(number_) + "/" + std::to_string(round_);
    expect(client_.set(address, mine).ok);
    expect(client_.getValue(address).text == mine);
}
