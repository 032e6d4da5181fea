#include "trctl/Commands.h"
#include "trctl/Plot.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace trctl {

namespace {

using std::chrono::steady_clock;

// The last parameter that a first cycle makes: once it is listed, the tree is whole.
constexpr char kLastOfTheCycle[] = "Device.DeviceInfo.DeviceLog";
constexpr std::chrono::milliseconds kPause{100};

bool isFirstCycleOver(client::Daemon& daemon) {
    const Addresses all = daemon.parameters();
    return std::find(all.begin(), all.end(), kLastOfTheCycle) != all.end();
}

}  // namespace

int wait(Context& context) {
    const double seconds = context.options.timeoutSeconds;
    const auto deadline = steady_clock::now() + std::chrono::duration<double>(seconds);
    while (true) {
        const bool isLast = steady_clock::now() >= deadline;
        try {
            if (isFirstCycleOver(context.daemon)) return kDone;
        } catch (const client::NoDaemon&) {
            if (isLast) throw;
        }
        if (isLast) break;
        std::this_thread::sleep_for(kPause);
    }
    complain("the first cycle is not over after " + numberText(seconds) + " s");
    return kRefused;
}

}  // namespace trctl
