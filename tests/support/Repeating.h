#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

/// Does something again and again beside the test, on another thread, with a pause in between.
/// The end of the object waits for the action under way.
class Repeating {
  public:
    explicit Repeating(std::function<void()> action,
                       std::chrono::microseconds pause = std::chrono::microseconds(0))
        : thread_([this, action = std::move(action), pause] {
              while (!done_) {
                  action();
                  std::this_thread::sleep_for(pause);
              }
          }) {}
    ~Repeating() {
        done_ = true;
        thread_.join();
    }
    Repeating(const Repeating&) = delete;
    Repeating& operator=(const Repeating&) = delete;

  private:
    std::atomic<bool> done_{false};
    std::thread thread_;
};
