#pragma once

#include "stb/inc/private/pthread_helper.h"

#include <atomic>
#include <memory>

/// Base of the daemon's long-lived threads: start, stop, an interruptible sleep, a completion
/// listener. A body loops on isRunning() with sleepMs() between its passes; stop() clears the flag,
/// wakes the sleeper and joins.
///
/// Any thread may call any public operation, except that the object's own thread must not stop or
/// destroy it: a thread cannot join itself, which is fatal. The control mutex is taken before the
/// sleep mutex, always. A failing pthread call ends the process with an assertion report.
///
/// A derived class calls shutdown() in its destructor: until then run() may still use its members.
class STBThread {
  public:
    /// Called on the finished thread, after run() has returned or thrown. Must not throw, must not
    /// stop the thread, and must outlive it.
    class OnThreadCompletedListener {
      public:
        virtual ~OnThreadCompletedListener() = default;
        virtual void onThreadCompleted(STBThread* thread) = 0;
    };

    enum class Priority { Low, Normal, High };

    using UniqueThreadPtr = std::unique_ptr<pthread_helper::thread<STBThread>>;

    virtual ~STBThread();

    /// The thread's body. An exception that leaves it is logged and ends this thread only;
    /// pthread_exit() and pthread_cancel() would end the process.
    virtual void run() = 0;

    /// Borrows the listener (may be null), also when the thread is already running.
    void start(OnThreadCompletedListener* listener = nullptr);
    void startThread(OnThreadCompletedListener* listener = nullptr) { start(listener); }

    /// Returns when the thread has left run() and has been joined.
    void stop();
    void stopThread() { stop(); }

    /// Sleeps at most `ms` milliseconds of wall-clock time, not at all unless the thread is
    /// running; may return early.
    void sleepMs(unsigned ms);
    void threadSleepMs(unsigned ms) { sleepMs(ms); }

    /// Wakes every sleeper; one that has not begun its wait misses it.
    void notify();

    /// True from start() to stop(), also when the body has already returned.
    bool isRunning() const { return running_.load(std::memory_order_relaxed); }

    /// True once the body of the thread last started has returned or thrown.
    bool hasCompleted() const { return completed_.load(std::memory_order_acquire); }

    /// Sets the nice value of the calling thread, not of the object's.
    void setPriority(const Priority& priority);

    /// What the new thread executes: run(), then the listener.
    void thread();

  protected:
    /// stop() without a log line; false when the thread is not running. May be called repeatedly.
    bool shutdown();

  private:
    void joinRunning() KELM_REQUIRES(controlMutex_, sleepMutex_);
    void runGuarded();

    UniqueThreadPtr record_ KELM_GUARDED_BY(controlMutex_);
    std::atomic<bool> running_{false};

    pthread_helper::mutex controlMutex_;
    /// Written under both mutexes, read by the thread when it ends.
    std::atomic<OnThreadCompletedListener*> listener_{nullptr};
    pthread_helper::mutex sleepMutex_;
    pthread_helper::condition sleepCondition_;

    std::atomic<bool> completed_{false};
};
