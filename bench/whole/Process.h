#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <sys/types.h>

/// What the kernel reports of a running process; 0 where it reports nothing.
namespace bench {

/// Kilobytes behind a key of /proc/PID/status or smaps_rollup, such as "VmHWM" or "Private_Dirty".
std::uint64_t statusKilobytes(pid_t pid, const std::string& key);
std::uint64_t mapsKilobytes(pid_t pid, const std::string& key);

/// Voluntary context switches of each thread so far.
std::map<pid_t, std::uint64_t> voluntarySwitches(pid_t pid);

/// Makes VmHWM the present resident size.
void resetPeak(pid_t pid);

}  // namespace bench
