#include "stb/src/common/Text.h"
#include "trctl/Commands.h"
#include "trctl/Plot.h"
#include "trctl/Text.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

namespace trctl {

namespace {

using std::chrono::steady_clock;

// The last parameter that a first cycle makes: once it is listed, the tree is whole.
constexpr char kLastOfTheCycle[] = "Device.DeviceInfo.DeviceLog";
constexpr std::chrono::milliseconds kPause{100};
constexpr std::size_t kLongestValue = 200;

// Looks until nothing is amiss. Returns what was amiss at the last look; empty when nothing.
std::string lookUntil(double seconds, const std::function<std::string()>& look) {
    const auto deadline = steady_clock::now() + std::chrono::duration<double>(seconds);
    while (true) {
        const bool isLast = steady_clock::now() >= deadline;
        try {
            const std::string amiss = look();
            if (amiss.empty() || isLast) return amiss;
        } catch (const client::NoDaemon&) {
            if (isLast) throw;
        }
        std::this_thread::sleep_for(kPause);
    }
}

bool isListed(client::Daemon& daemon, const std::string& parameter) {
    const Addresses all = daemon.parameters();
    return std::find(all.begin(), all.end(), parameter) != all.end();
}

// White space at the end does not count: most values that come from files end with a line feed.
std::string faultOfValue(client::Daemon& daemon, const std::string& parameter,
                         const std::string& wanted) {
    const std::string value = valueOrReason(daemon, parameter);
    // The daemon reads an unknown address as the empty text.
    if (value.empty() && !isListed(daemon, parameter)) return "there is no " + parameter;
    if (TR::Utils::trimRight(value) == TR::Utils::trimRight(wanted)) return "";
    return parameter + " has the value \"" + shortened(value, kLongestValue, "~") + '"';
}

}  // namespace

int wait(Context& context) {
    const Options& options = context.options;
    const std::string amiss = lookUntil(options.timeoutSeconds, [&]() -> std::string {
        if (!options.parameter.empty())
            return faultOfValue(context.daemon, options.parameter, options.value);
        return isListed(context.daemon, kLastOfTheCycle) ? "" : "the first cycle is not over";
    });
    if (amiss.empty()) return kDone;
    complain(amiss + " after " + numberText(options.timeoutSeconds) + " s");
    return kRefused;
}

}  // namespace trctl
