#include "daemon/Interrupt.h"

#include <csignal>
#include <ctime>

namespace TR::Interrupt {

namespace {

sigset_t interruptOnly() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    return set;
}

}  // namespace

void block() {
    const sigset_t set = interruptOnly();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

bool wait(std::chrono::milliseconds limit) {
    const sigset_t set = interruptOnly();
    timespec timeout{};
    timeout.tv_sec = static_cast<time_t>(limit.count() / 1000);
    timeout.tv_nsec = static_cast<decltype(timeout.tv_nsec)>(limit.count() % 1000 * 1'000'000);
    return sigtimedwait(&set, nullptr, &timeout) == SIGINT;
}

}  // namespace TR::Interrupt
