#pragma once

namespace trctl {

/// What `--help` prints besides the options: on top, and at the end of the whole and of each
/// command.

inline constexpr char kAbout[] =
    "Reads, writes and watches the TR-069 parameters that kelm-trd serves on D-Bus.";

inline constexpr char kFooter[] =
    "A PATH is a parameter (Device.DeviceInfo.UpTime), an object with its point for everything\n"
    "beneath it (Device.IP.), or a shell pattern in quotes ('**.Stats.Bytes*'): * ? [...] stay\n"
    "within a level, ** crosses levels. Control characters are escaped.\n"
    "\n"
    "Exit status: 0; 1 refused, not found or different; 2 a wrong call; 3 no bus or no daemon.\n"
    "\n"
    "Examples:\n"
    "  trctl get Device.DeviceInfo.\n"
    "  trctl set Device.Services.STBService.1.X_Kelm.Config.SyslogHost 10.0.0.9\n"
    "  trctl watch Device.IP. --interval 5\n"
    "  trctl help COMMAND";

inline constexpr char kGetExamples[] =
    "Examples:\n"
    "  trctl get Device.DeviceInfo.UpTime\n"
    "  trctl get Device.IP. '**.Stats.Bytes*'\n"
    "  trctl get --json Device. >saved.json\n"
    "  trctl get --value Device.DeviceInfo.UpTime";
inline constexpr char kSetExamples[] =
    "The daemon does not report whether it took a value, so it is read back. Nothing is written\n"
    "unless all parameters exist and are writable. - reads standard input, without a line end at\n"
    "its end; PATH=- writes a dash.\n"
    "\n"
    "Examples:\n"
    "  trctl set Device.A=1 Device.B=2\n"
    "  trctl set Device.Some.Text - <file\n"
    "  trctl set Device.Services.STBService.1.X_Kelm.Config.SyslogHost 10.0.0.9\n"
    "  trctl set Device.Services.STBService.1.X_Kelm.Config.SyslogHost ''\n"
    "  trctl set Device.Some.Text -- --starts-with-dashes";
inline constexpr char kRestoreExamples[] =
    "Writes the saved values of FILE that differ, where the daemon takes them; - is standard "
    "input.\n"
    "Prints them as diff does. What it leaves alone is counted on standard error: read-only\n"
    "parameters that differ, parameters that no longer exist, masked and garbled values.\n"
    "Exit status: 0 all is as saved, 1 a value did not take, 2 FILE cannot be used.\n"
    "\n"
    "Examples:\n"
    "  trctl restore saved.json --dry-run\n"
    "  trctl restore saved.json 'Device.Services.**.Config.*'";
inline constexpr char kListExamples[] =
    "Examples:\n"
    "  trctl list\n"
    "  trctl list Device.IP. --parameters\n"
    "  trctl list --level Device.\n"
    "  trctl list --level '**.Stats.'\n"
    "  trctl list --long Device.DeviceInfo.";
inline constexpr char kTreeExamples[] =
    "Examples:\n"
    "  trctl tree Device.IP.\n"
    "  trctl tree Device. --depth 2\n"
    "  trctl tree '**.Status' --ascii";
inline constexpr char kInfoExamples[] =
    "Prints kind, type, value, writable, forced inform, source, unit, meaning, and whether the "
    "CWMP\n"
    "client watches it.\n"
    "\n"
    "Examples:\n"
    "  trctl info Device.DeviceInfo.UpTime\n"
    "  trctl info 'Device.DeviceInfo.*Version'";
inline constexpr char kWatchExamples[] =
    "Reads the parameters at an interval until Ctrl-C, as the daemon has no signal for changes.\n"
    "\n"
    "Examples:\n"
    "  trctl watch\n"
    "  trctl watch --no-clocks --except Device.DeviceInfo.DeviceLog\n"
    "  trctl watch Device.IP. --rate --interval 5\n"
    "  trctl watch --once Device.IP.Interface.1.Status\n"
    "  trctl watch --plot Device.DeviceInfo.MemoryStatus.Free";
inline constexpr char kWaitExamples[] =
    "With PATH=VALUE it waits until this parameter has this value; white space at the value's end\n"
    "does not count. Exit status: 0 it is so, 1 not in time, 3 no daemon in time.\n"
    "\n"
    "Examples:\n"
    "  trctl wait && trctl tree\n"
    "  trctl wait Device.IP.Interface.1.Status=Up --timeout 5";
inline constexpr char kDiffExamples[] =
    "FILE is saved output of `trctl get --json`; - is standard input. Lines with - are the "
    "file's,\n"
    "with + the daemon's. Without PATH it compares the part of the tree that was saved.\n"
    "Exit status: 0 the same, 1 different, 2 FILE cannot be used.\n"
    "\n"
    "Examples:\n"
    "  trctl diff saved.json\n"
    "  trctl diff saved.json 'Device.Services.**.Config.*'";
inline constexpr char kChangesExamples[] =
    "Prints the watched parameters that the latest cycle changed, as the CWMP client gets them.\n"
    "The client drops a line that is not valid JSON; trctl marks it and returns status 1.\n"
    "\n"
    "Examples:\n"
    "  trctl changes";
inline constexpr char kHelpExamples[] =
    "Examples:\n"
    "  trctl help\n"
    "  trctl help watch";
inline constexpr char kReportExamples[] =
    "The page needs no network and masks passphrases and passwords. FILE ends in .html; - is\n"
    "standard output; the default name contains the time.\n"
    "\n"
    "Examples:\n"
    "  trctl report box.html\n"
    "  trctl report box.html --seconds 60 Device.IP.\n"
    "  trctl report box.html --snapshot kelm-snapshot-stb-20261121T195638Z.tar.gz";

}  // namespace trctl
