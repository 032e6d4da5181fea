#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <thread>

/// Something that happens once, on any thread.
class Event {
  public:
    void set() {
        const std::lock_guard<std::mutex> guard(mutex_);
        happened_ = true;
        changed_.notify_all();
    }

    /// False when it has not happened within a time that no healthy run comes near.
    bool wait(std::chrono::milliseconds patience = std::chrono::seconds(60)) {
        std::unique_lock<std::mutex> guard(mutex_);
        return changed_.wait_until(guard, std::chrono::system_clock::now() + patience,
                                   [this] { return happened_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool happened_ = false;
};

/// Runs the body and ends the whole program if it hangs: its objects cannot be left any more.
inline void mustFinish(const std::function<void()>& body) {
    Event finished;
    std::thread runner([&] {
        body();
        finished.set();
    });
    if (!finished.wait()) {
        std::fputs("the operation hangs\n", stderr);
        std::abort();
    }
    runner.join();
}
