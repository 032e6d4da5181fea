#include "daemon/StopTask.h"

#include <system_error>
#include <utility>

namespace TR {

StopTask::~StopTask() {
    if (thread_.joinable()) thread_.join();
}

void StopTask::start(std::function<void()> stop) {
    isStarted_ = true;
    const auto task = [this, stop = std::move(stop)] {
        stop();
        isDone_ = true;
    };
    try {
        thread_ = std::thread(task);
    } catch (const std::system_error&) {
        task();
    }
}

}  // namespace TR
