#include "stb/src/common/Text.h"
#include "trctl/Commands.h"
#include "trctl/Plot.h"
#include "trctl/Text.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>

namespace trctl {

namespace {

using std::chrono::steady_clock;

// The last parameter that a first cycle makes: once it is listed, the tree is whole.
constexpr char kLastOfTheCycle[] = "Device.DeviceInfo.DeviceLog";
constexpr std::chrono::milliseconds kPause{100};
constexpr std::size_t kLongestValue = 200;

bool isListed(client::Daemon& daemon, const std::string& parameter) {
    const Addresses all = daemon.parameters();
    return std::find(all.begin(), all.end(), parameter) != all.end();
}

// Why what is waited for, PATH=VALUE or the first cycle, is not so; empty when it is. White space
// at the end does not count: most values that come from files end with a line feed.
std::string faultOf(client::Daemon& daemon, const Addresses& paths) {
    if (paths.empty())
        return isListed(daemon, kLastOfTheCycle) ? "" : "the first cycle is not over";
    const std::string& awaited = paths.front();
    const std::size_t sign = awaited.find('=');
    const std::string parameter = awaited.substr(0, sign);
    const std::string value = valueOrReason(daemon, parameter);
    // The daemon reads an unknown address as the empty text.
    if (value.empty() && !isListed(daemon, parameter)) return "there is no " + parameter;
    if (TR::Utils::trimRight(value) == TR::Utils::trimRight(awaited.substr(sign + 1))) return "";
    return parameter + " has the value \"" + shortened(value, kLongestValue, "~") + '"';
}

}  // namespace

int wait(Context& context) {
    const double seconds = context.options.timeoutSeconds;
    const auto deadline = steady_clock::now() + std::chrono::duration<double>(seconds);
    while (true) {
        const bool isLast = steady_clock::now() >= deadline;
        try {
            const std::string fault = faultOf(context.daemon, context.options.paths);
            if (fault.empty()) return kDone;
            if (isLast) {
                complain(fault + " after " + numberText(seconds) + " s");
                return kRefused;
            }
        } catch (const client::NoDaemon&) {
            if (isLast) throw;
        }
        std::this_thread::sleep_for(kPause);
    }
}

}  // namespace trctl
