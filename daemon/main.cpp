#include "daemon/ClockStep.h"
#include "daemon/Interrupt.h"
#include "daemon/StopTask.h"
#include "daemon/Worker.h"
#include "dbus/DBusWorker.h"
#include "model/Storage.h"
#include "stb/src/common/STBLogger.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>

#include <malloc.h>
#include <unistd.h>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPollInterval{1000};
constexpr milliseconds kStoppingPollInterval{50};
constexpr int kSecondInterruptStatus = -1;  // 255 to the shell
constexpr int kOwnMappingBytes = 1 << 20;
constexpr int kKeptHeapBytes = 4 << 20;

// What is still held at exit goes in the reverse order: the store last, both its users before it.
std::unique_ptr<TR::Storage> storage;
std::unique_ptr<TR::Worker> worker;
std::unique_ptr<TR::DBusWorker> dbusWorker;
bool stopRequested = false;  // main thread only

TR::StopTask& stopTask() {
    static TR::StopTask task;
    return task;
}

void stopThreads() {
    dbusWorker->stop();
    worker->stop();
}

// SIGINT is blocked in every thread; main takes it between two waits and calls this like any
// function.
void signalHandler(int) {
    // The first stop may be waiting for a command: no destructor may join it now.
    if (stopRequested) _exit(kSecondInterruptStatus);
    stopRequested = true;
    stopTask().start(stopThreads);
}

// A daemon that nobody can reach is of no use: its supervisor is to start another one. Nothing
// waits to be written, and a worker in a slow command is not waited for.
[[noreturn]] void exitWithoutBus() {
    STBLogger_log(kelmLogParams(), "", STBLogLevel::Error, __LINE__, "daemon/main",
                  "The connection to the session bus is lost, exiting");
    _exit(EXIT_FAILURE);
}

void waitForEnd() {
    TR::ClockStep clockStep;
    while (worker->isOnline() || stopTask().isUnderWay()) {
        if (TR::Interrupt::wait(stopRequested ? kStoppingPollInterval : kPollInterval))
            signalHandler(SIGINT);
        if (!stopRequested && dbusWorker->isBusLost()) exitWithoutBus();
        if (clockStep.shouldWakeSleepers()) worker->notify();
    }
}

// The system log comes and goes by the megabyte. Left alone, the C library takes such blocks from
// the heap once it has seen one freed, where they leave holes of their size for good. What a long
// list took, on the other hand, is kept for the next one: fetching it anew costs more than the
// list.
void setUpHeap() {
#ifdef M_MMAP_THRESHOLD
    // Before any thread is started; NOLINTNEXTLINE(concurrency-mt-unsafe)
    mallopt(M_MMAP_THRESHOLD, kOwnMappingBytes);
    mallopt(M_TRIM_THRESHOLD, kKeptHeapBytes);  // NOLINT(concurrency-mt-unsafe)
#endif
}

}  // namespace

int main() {
    setUpHeap();
    TR::Interrupt::block();
    storage = std::make_unique<TR::Storage>();
    worker = std::make_unique<TR::Worker>(storage.get());
    dbusWorker = std::make_unique<TR::DBusWorker>(storage.get());
    std::signal(SIGINT, signalHandler);
    worker->start();
    dbusWorker->start();

    waitForEnd();
    const bool wasAskedToStop = stopRequested;
    if (!wasAskedToStop)
        signalHandler(SIGINT);  // the worker has failed: stop the rest in the same way
    waitForEnd();
    dbusWorker.reset();
    worker.reset();
    storage.reset();
    return wasAskedToStop ? EXIT_SUCCESS : EXIT_FAILURE;
}
