#include "daemon/Worker.h"

#include "model/Storage.h"
#include "providers/DeviceInfoDataProvider.h"
#include "providers/FrontEndDataProvider.h"
#include "providers/NetworkDataProvider.h"
#include "providers/StaticDataProvider.h"
#include "servicemonitoring/ServiceMonitoring.h"

namespace TR {

namespace {

constexpr unsigned kPassMilliseconds = 100;
constexpr std::time_t kCycleSeconds = 5;

}  // namespace

Worker::Worker(Storage* storage) : storage_(storage) {}

Worker::~Worker() {
    shutdown();
}

void Worker::run() {
    createProviders();
    initProviders();
    while (isRunning()) {
        const NSTime sinceUpdate = NSTime::nowRelative() - lastUpdate_;
        if (sinceUpdate.toTimeT() >= kCycleSeconds) runCycle();
        sleepMs(kPassMilliseconds);
    }
}

void Worker::createProviders() {
    staticProvider_ = std::make_unique<StaticDataProvider>(storage_);
    networkProvider_ = std::make_unique<NetworkDataProvider>(storage_);
    serviceMonitoring_ = std::make_unique<ServiceMonitoring>(storage_);
    frontEndProvider_ = std::make_unique<FrontEndDataProvider>(storage_);
    deviceInfoProvider_ = std::make_unique<DeviceInfoDataProvider>(storage_);
}

void Worker::initProviders() {
    staticProvider_->updateValues();
    serviceMonitoring_->init();
    frontEndProvider_->init();
    deviceInfoProvider_->init();
}

void Worker::runCycle() {
    networkProvider_->updateValues();
    serviceMonitoring_->updateValues();
    frontEndProvider_->updateValues();
    deviceInfoProvider_->updateValues();
    // A change that is recorded between the copy and the clear is not notified. Only this thread's
    // providers record changes, so none is lost.
    storage_->getNotifTable().tryTriggerNotify(storage_->updates());
    storage_->clearUpdates();
    // Taken after the cycle, so that a slow one is followed by five quiet seconds.
    lastUpdate_ = NSTime::nowRelative();
}

}  // namespace TR
