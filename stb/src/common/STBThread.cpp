#include "stb/src/common/STBThread.h"

#include "stb/src/common/STBLogger.h"

#include <cstdint>
#include <exception>
#include <utility>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr const char* kSource = "src/common/STBThread";

constexpr int kNiceLow = 15;
constexpr int kNiceNormal = 0;
constexpr int kNiceHigh = -5;

int niceValue(STBThread::Priority priority) {
    switch (priority) {
        case STBThread::Priority::Low:
            return kNiceLow;
        case STBThread::Priority::High:
            return kNiceHigh;
        default:
            return kNiceNormal;
    }
}

timespec wallClockAfterMs(unsigned ms) {
    constexpr std::int64_t kMicrosPerSecond = 1000000;
    timeval now{};
    gettimeofday(&now, nullptr);
    const std::int64_t micros = now.tv_usec + std::int64_t{ms} * 1000;
    timespec deadline{};
    deadline.tv_sec = now.tv_sec + static_cast<time_t>(micros / kMicrosPerSecond);
    deadline.tv_nsec = static_cast<decltype(deadline.tv_nsec)>(micros % kMicrosPerSecond * 1000);
    return deadline;
}

}  // namespace

STBThread::~STBThread() {
    shutdown();
}

void STBThread::start(OnThreadCompletedListener* listener) {
    const pthread_helper::scoped_lock control(controlMutex_);
    const pthread_helper::scoped_lock sleep(sleepMutex_);
    listener_ = listener;
    if (isRunning()) {
        STBLogger_log(kelmLogParams(), "", STBLogLevel::Error, __LINE__, kSource,
                      "Thread %p already running", static_cast<void*>(this));
        return;
    }
    running_ = true;
    completed_ = false;
    launch();
}

void STBThread::launch() {
    auto record = std::make_unique<pthread_helper::thread<STBThread>>(this, &STBThread::thread);
    record->create();
    record_ = std::move(record);
}

void STBThread::stop() {
    const pthread_helper::scoped_lock control(controlMutex_);
    const pthread_helper::scoped_lock sleep(sleepMutex_);
    sleepCondition_.broadcast();
    if (!isRunning()) {
        STBLogger_log(kelmLogParams(), "", STBLogLevel::Error, __LINE__, kSource,
                      "Thread %p already stopped", static_cast<void*>(this));
        return;
    }
    joinRunning();
}

void STBThread::shutdown() {
    const pthread_helper::scoped_lock control(controlMutex_);
    const pthread_helper::scoped_lock sleep(sleepMutex_);
    sleepCondition_.broadcast();
    if (isRunning()) joinRunning();
}

// The thread needs the sleep mutex to leave its sleep, so it is given back before the join, and the
// caller's guard releases it a second time afterwards. That release answers EPERM, which the unlock
// check accepts on purpose: taking the mutex again just to balance it could block behind another
// sleeper. Not analysed for this double release.
void STBThread::joinRunning() KELM_NO_ANALYSIS {
    running_ = false;
    if (!record_) return;
    sleepMutex_.unlock();
    record_->join();
    record_.reset();
}

void STBThread::sleepMs(unsigned ms) {
    const pthread_helper::scoped_lock sleep(sleepMutex_);
    if (isRunning()) sleepCondition_.waitUntil(sleepMutex_, wallClockAfterMs(ms));
}

void STBThread::notify() {
    sleepCondition_.broadcast();
}

void STBThread::setPriority(const Priority& priority) {
    // Linux keeps the nice value per kernel thread, so PRIO_PROCESS takes a thread's id.
    const auto tid = static_cast<id_t>(syscall(SYS_gettid));
    setpriority(PRIO_PROCESS, tid, niceValue(priority));
}

void STBThread::thread() {
    runGuarded();
    completed_.store(true, std::memory_order_release);
    if (auto* listener = listener_.load()) listener->onThreadCompleted(this);
}

void STBThread::runGuarded() {
    try {
        run();
    } catch (const std::exception& error) {
        STBLogger_log(kelmLogParams(), "", STBLogLevel::Error, __LINE__, kSource,
                      "Thread %p ended by an exception: %s", static_cast<void*>(this),
                      error.what());
    } catch (...) {
        STBLogger_log(kelmLogParams(), "", STBLogLevel::Error, __LINE__, kSource,
                      "Thread %p ended by an unknown exception", static_cast<void*>(this));
    }
}
