#include "daemon/Process.h"
#include "daemon/Worker.h"
#include "dbus/DBusWorker.h"
#include "model/Storage.h"
#include "stb/src/common/Commands.h"
#include "stb/src/common/STBLogger.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>

#include <unistd.h>

namespace {

constexpr std::chrono::seconds kLookInterval{1};
constexpr int kSecondInterruptStatus = -1;  // 255 to the shell

// Destroyed in reverse order at exit: the two users first, the store last.
std::unique_ptr<TR::Storage> storage;
std::unique_ptr<TR::Worker> worker;
std::unique_ptr<TR::DBusWorker> dbusWorker;
// Main thread only, and a handler that interrupts it.
volatile std::sig_atomic_t stopRequested = 0;
volatile std::sig_atomic_t isStopping = 0;

// Runs no destructor, which could wait for a command, and kills the running commands.
[[noreturn]] void endAtOnce(int status) {
    TR::Utils::killRunningCommands();
    _exit(status);
}

// Either stop may take as long as a command: from here on a SIGINT runs the handler at once.
void stopThreads() {
    isStopping = 1;
    TR::Process::letInterruptThrough();
    dbusWorker->stop();
    worker->stop();
}

// SIGINT is blocked until a stop begins, so main calls this for the first one between two waits. A
// second one interrupts main, in here or in the teardown.
void signalHandler(int) {
    if (stopRequested != 0) endAtOnce(kSecondInterruptStatus);
    stopRequested = 1;
    if (isStopping == 0) stopThreads();
}

// Nobody can reach this daemon, so it ends and its supervisor starts another one. It does not wait
// for a worker in a slow command.
[[noreturn]] void exitWithoutBus() {
    STBLogger_log(kelmLogParams(), "", STBLogLevel::Error, __LINE__, "daemon/main",
                  "The connection to the session bus is lost, exiting");
    endAtOnce(EXIT_FAILURE);
}

void waitForEnd() {
    while (worker->isOnline()) {
        if (TR::Process::waitForInterrupt(kLookInterval)) {
            signalHandler(SIGINT);
            return;
        }
        if (dbusWorker->isBusLost()) exitWithoutBus();
        // It sleeps by the wall clock, which may have been stepped back by an hour.
        worker->notify();
    }
    stopThreads();  // the worker has ended by itself
}

}  // namespace

int main() {
    TR::Process::setUp();
    storage = std::make_unique<TR::Storage>();
    worker = std::make_unique<TR::Worker>(storage.get());
    dbusWorker = std::make_unique<TR::DBusWorker>(storage.get());
    std::signal(SIGINT, signalHandler);
    worker->start();
    dbusWorker->start();

    waitForEnd();
    if (dbusWorker->isConnecting()) {
        // A silent bus holds the D-Bus thread inside libdbus, where it still uses these two.
        worker.reset();
        endAtOnce(EXIT_SUCCESS);
    }
    dbusWorker.reset();
    worker.reset();
    storage.reset();
    return EXIT_SUCCESS;
}
