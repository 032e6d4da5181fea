#include "stb/src/common/STBLoggerContainer.h"

STBLoggerContainer& STBLoggerContainer::instance() {
    // Never destroyed: threads may still log while the process exits.
    static auto& container = *new STBLoggerContainer;
    return container;
}

const STBLogger& STBLoggerContainer::loggerFor(const STBLoggerLogParams& params) {
    const std::string application = params.application == nullptr ? "" : params.application;
    const pthread_helper::scoped_lock guard(mutex_);
    auto& logger = loggers_[application];
    if (!logger) {
        STBLoggerLogParams own = params;
        logger = std::make_unique<STBLogger>(&own);
    }
    return *logger;
}
