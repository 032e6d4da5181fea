#include "stb/src/common/STBThread.h"

#include "stb/src/common/NSTime.h"
#include "stb/src/common/STBLogger.h"

#include <exception>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr const char* kSource = "src/common/STBThread";

constexpr int kNiceLow = 15;
constexpr int kNiceNormal = 0;
constexpr int kNiceHigh = -5;

int niceValue(STBThread::Priority priority) {
    if (priority == STBThread::Priority::Low) return kNiceLow;
    return priority == STBThread::Priority::High ? kNiceHigh : kNiceNormal;
}

timespec wallClockAfterMs(unsigned ms) {
    const timeval end = (NSTime::now() + std::int64_t{ms} * 1000).getTimeVal();
    timespec deadline{};
    deadline.tv_sec = end.tv_sec;
    deadline.tv_nsec = static_cast<decltype(deadline.tv_nsec)>(end.tv_usec * 1000);
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
    record_ = std::make_unique<pthread_helper::thread<STBThread>>(this, &STBThread::thread);
    record_->create();
}

void STBThread::stop() {
    if (!shutdown())
        STBLogger_log(kelmLogParams(), "", STBLogLevel::Error, __LINE__, kSource,
                      "Thread %p already stopped", static_cast<void*>(this));
}

bool STBThread::shutdown() {
    const pthread_helper::scoped_lock control(controlMutex_);
    const pthread_helper::scoped_lock sleep(sleepMutex_);
    sleepCondition_.broadcast();
    if (!isRunning()) return false;
    joinRunning();
    return true;
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
