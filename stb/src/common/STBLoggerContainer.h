#pragma once

#include "stb/inc/private/pthread_helper.h"
#include "stb/src/common/STBLogger.h"

#include <map>
#include <memory>
#include <string>

/// The process's loggers, one per application name, each made on first use and kept until the
/// process ends. Any thread may ask; the container's mutex is held while a logger is made and may
/// be followed by the console's, never the other way round.
class STBLoggerContainer {
  public:
    static STBLoggerContainer& instance();

    const STBLogger& loggerFor(const STBLoggerLogParams& params);

  private:
    STBLoggerContainer() = default;

    pthread_helper::mutex mutex_;
    /// The loggers themselves do not move.
    std::map<std::string, std::unique_ptr<STBLogger>> loggers_ KELM_GUARDED_BY(mutex_);
};
