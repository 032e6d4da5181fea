#pragma once

#include "stb/src/common/NSTime.h"
#include "stb/src/common/STBThread.h"

#include <memory>

namespace TR {

class DeviceInfoDataProvider;
class FrontEndDataProvider;
class NetworkDataProvider;
class ServiceMonitoring;
class StaticDataProvider;
class Storage;

/// The data-collection thread: makes the providers, lets each fill the store once and then every
/// five seconds, and hands what changed in a cycle to the notification table. `start`, `stop` and
/// `isOnline` are called by main. `run` takes the steps on the thread itself; a worker that is not
/// started leaves them to its caller. The store is borrowed and outlives the worker.
class Worker : public STBThread {
  public:
    explicit Worker(Storage* storage);
    /// Joins the thread, then destroys the providers in the reverse of their order.
    ~Worker() override;

    void start() { startThread(nullptr); }
    /// Asks the loop to end and waits for it; a cycle under way finishes first.
    void stop() { stopThread(); }
    /// False once a stop was asked for, or when the thread has ended by itself.
    bool isOnline() const { return isRunning() && !hasCompleted(); }

    void run() override;

    /// The steps of `run`: the first two once, in this order, then a cycle at a time.
    void createProviders();
    void initProviders();
    void runCycle();

  private:
    Storage* storage_;
    std::unique_ptr<NetworkDataProvider> networkProvider_;
    std::unique_ptr<ServiceMonitoring> serviceMonitoring_;
    std::unique_ptr<StaticDataProvider> staticProvider_;
    std::unique_ptr<FrontEndDataProvider> frontEndProvider_;
    std::unique_ptr<DeviceInfoDataProvider> deviceInfoProvider_;
    NSTime lastUpdate_;  ///< monotonic, the end of the last cycle
};

}  // namespace TR
