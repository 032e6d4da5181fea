#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

/// The virtual box as a test inside it uses it: its files, its stand-in commands' logs and faults.
/// Everything is a plain file of the box and is gone with it.
namespace box {

/// Replaces a file's content, making its folders.
void writeFile(const std::string& path, const std::string& content);
/// The same in one step: a reader finds the old content or the new one, whole.
void replaceFile(const std::string& path, const std::string& content);
/// Empty for a missing file.
std::string readFile(const std::string& path);

/// The argument lines, command name first, that a stand-in was called with since `clearCalls`,
/// oldest first.
std::vector<std::string> calls(const std::string& command);
void clearCalls(const std::string& command);
/// Waits until the stand-in was called that often; false when it was not in time.
bool waitForCalls(const std::string& command, std::size_t count = 1);
/// The cycles of the daemon that have ended or counted processes already: ps runs twice in each.
std::size_t cyclesSoFar();

/// The file in which the CWMP client lists the parameters that it watches.
constexpr char kNotificationFile[] = "/tmp/.easycwmp_notif_param_value";
/// What the daemon runs when one of them has changed.
constexpr char kNotifyCommand[] = "ubus -t 1 call tr069 notify";
/// A row of that file; with the new value, the change line that the daemon answers.
std::string notificationRow(const std::string& parameter, const std::string& value = "");
/// Replaces the file: one row for each parameter.
void writeNotificationFile(const std::vector<std::string>& parameters);

/// Makes a stand-in misbehave from its next call on: "exit 1", "silent", "garbage", "flood",
/// "line", "noeol", "slow 3", "hang", "closeearly", "background". An empty fault ends that.
void setFault(const std::string& command, const std::string& fault);

/// The deadline of a wait that names none: a virtual machine was seen to stand still for more than
/// a minute.
constexpr std::chrono::seconds kDeadline{180};

/// Looks again and again until the condition holds; false when it did not within the deadline.
bool waitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds deadline = kDeadline);

}  // namespace box
