#include "providers/NetworkText.h"

#include "stb/src/common/Text.h"

#include <net/if.h>

namespace TR::NetworkText {

namespace {

using Interface = NetworkDataProvider::Interface;
using Status = Interface::Status;
using DuplexMode = Interface::DuplexMode;

// Linux keeps "no speed known" as -1, and older kernels print it unsigned.
constexpr std::uint64_t kUnknownSpeed = 0xffffffff;

// Their names in lower case are the kernel's words. "testing" is missing on purpose: no traffic
// passes, and no other state fits.
constexpr Status kOperstates[] = {Status::Up, Status::Down, Status::Dormant, Status::NotPresent,
                                  Status::LowerLayerDown};

}  // namespace

Status status(unsigned flags, const std::string& operstate) {
    if ((flags & IFF_UP) == 0) return Status::Down;
    const std::string state = Utils::trim(operstate);
    for (const Status known : kOperstates)
        if (state == Utils::toLowerString(Interface::statusToString(known))) return known;
    // Drivers that never report a state; the kernel's documentation takes them as up.
    if (state == "unknown" && (flags & IFF_RUNNING) != 0) return Status::Up;
    return Status::Error;
}

DuplexMode duplexMode(const std::string& duplex) {
    const std::string mode = Utils::toLowerString(Utils::trim(duplex));
    for (const DuplexMode known : {DuplexMode::Full, DuplexMode::Half})
        if (mode == Utils::toLowerString(Interface::duplexModeToString(known))) return known;
    return DuplexMode::Auto;
}

std::uint64_t bitRate(const std::string& speed) {
    const std::string text = Utils::trim(speed);
    const bool isDecimal = text.find_first_not_of("0123456789") == std::string::npos;
    const std::int64_t number = isDecimal ? Utils::leadingNumber(text).value_or(0) : 0;
    const auto rate = static_cast<std::uint64_t>(number);
    return rate == kUnknownSpeed ? 0 : rate;
}

}  // namespace TR::NetworkText
