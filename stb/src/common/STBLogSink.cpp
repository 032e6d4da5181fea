#include "stb/src/common/STBLogSink.h"

#include "stb/inc/private/pthread_helper.h"
#include "stb/src/common/STBLogLine.h"

#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

namespace stb_log_sink {
namespace {

// Never destroyed: threads may still log while the process exits.
pthread_helper::mutex& sinkMutex() {
    static auto& guard = *new pthread_helper::mutex;
    return guard;
}

// Guarded by the mutex.
unsigned dropped = 0;
bool isLineCut = false;  // the last line on standard error has no end

std::string droppedText() {
    STBLogLine line;
    line.append("STBLogger: %u lines could not be written and were dropped", dropped);
    return line.text();
}

bool isReady(int descriptor) {
    pollfd polled{descriptor, POLLOUT, 0};
    return poll(&polled, 1, 0) > 0;
}

bool canBlock(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) != 0 || S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode);
}

// O_NONBLOCK belongs to the open file description, which other programs share. So a pipe or a
// terminal is opened again for one write; where that is refused, poll() is asked first.
ssize_t writeAtOnce(const std::string& text) {
    const ssize_t sent = send(STDERR_FILENO, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent >= 0 || errno != ENOTSOCK) return sent;
    if (!canBlock(STDERR_FILENO)) return write(STDERR_FILENO, text.data(), text.size());
    const int own = open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (own < 0)
        return isReady(STDERR_FILENO) ? write(STDERR_FILENO, text.data(), text.size()) : -1;
    const ssize_t written = write(own, text.data(), text.size());
    close(own);
    return written;
}

// vsyslog() waits for room in the log's queue. A socket connected to the system log is ready while
// there is room.
bool syslogHasRoom() {
    const int probe = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (probe < 0) return true;
    const sockaddr_un address{AF_UNIX, "/dev/log"};
    const bool isConnected =
        connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    const bool hasRoom = !isConnected || isReady(probe);
    close(probe);
    return hasRoom;
}

__attribute__((format(printf, 2, 3))) void sendOwn(int priority, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vsyslog(priority, format, arguments);
    va_end(arguments);
}

}  // namespace

void writeLine(const std::string& line) {
    const pthread_helper::scoped_lock guard(sinkMutex());
    std::string text = isLineCut ? "\n" : "";
    if (dropped > 0) text += droppedText() + "\n";
    text += line + "\n";
    const ssize_t written = writeAtOnce(text);
    const auto whole = static_cast<ssize_t>(text.size());
    if (written > 0) isLineCut = written < whole;
    dropped = written < whole - 1 ? dropped + 1 : 0;
}

void printLine(const char* format, ...) {
    STBLogLine line;
    va_list arguments;
    va_start(arguments, format);
    line.append(format, arguments);
    va_end(arguments);
    writeLine(line.text());
}

void sendSyslog(int priority, const char* format, va_list arguments) {
    const pthread_helper::scoped_lock guard(sinkMutex());
    if (dropped > 0 && syslogHasRoom()) {
        sendOwn(LOG_WARNING, "%s", droppedText().c_str());
        dropped = 0;
    }
    if (syslogHasRoom())
        vsyslog(priority, format, arguments);
    else
        ++dropped;
}

}  // namespace stb_log_sink
