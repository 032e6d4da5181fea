#pragma once

#include "cwmp/UciText.h"

#include <optional>
#include <string>
#include <vector>

namespace cwmp {

/// `Device.ManagementServer.`, the client's own branch, which is kept in uci and not in the daemon.
/// Pure, but for `firstAddressOf`.
namespace management {

constexpr char kBranch[] = "Device.ManagementServer.";
constexpr char kParameterKeyOption[] = "@acs[0].parameter_key";

/// True also for a name in the branch that does not exist.
bool isManaged(const std::string& name);

std::vector<std::string> names();
bool isWritable(const std::string& parameter);
bool isForcedInform(const std::string& parameter);

/// The option behind a writable parameter.
std::string optionOf(const std::string& parameter);
/// What is to be stored for what the ACS sent; nothing when the value is refused.
std::optional<std::string> stored(const std::string& parameter, const std::string& text);
/// As it is stored; the URL of connection requests is put together.
std::string value(const UciOptions& options, const std::string& parameter);

/// The first IPv4 address of a network interface; empty without one.
std::string firstAddressOf(const std::string& interface);

}  // namespace management

}  // namespace cwmp
