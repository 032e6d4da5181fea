#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace TR {

/// Stops the daemon's threads beside the main thread, so that main can go on taking SIGINT while a
/// slow command holds the stop up. Started and joined by main.
class StopTask {
  public:
    StopTask() = default;
    ~StopTask();
    StopTask(const StopTask&) = delete;
    StopTask& operator=(const StopTask&) = delete;

    /// Runs \p stop on a thread of its own, or on the caller's where no thread is to be had. Once
    /// only.
    void start(std::function<void()> stop);
    bool isUnderWay() const { return isStarted_ && !isDone_; }

  private:
    bool isStarted_ = false;
    std::atomic<bool> isDone_{false};
    std::thread thread_;
};

}  // namespace TR
