#include "tests/support/UnixSocket.h"

#include <stdexcept>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int kType = SOCK_STREAM | SOCK_CLOEXEC;

/// Connects or binds.
template <typename Call>
bool isDone(Call call, int descriptor, const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return call(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

}  // namespace

UnixSocket::~UnixSocket() {
    if (descriptor_ >= 0) close(descriptor_);
}

int UnixSocket::connectedTo(const std::string& path, int flags) {
    const int descriptor = socket(AF_UNIX, kType | flags, 0);
    if (isDone(connect, descriptor, path)) return descriptor;
    close(descriptor);
    return -1;
}

int UnixSocket::listeningAt(const std::string& path) {
    const int descriptor = socket(AF_UNIX, kType, 0);
    if (!isDone(bind, descriptor, path) || listen(descriptor, 1) != 0)
        throw std::runtime_error("no socket to listen at");
    return descriptor;
}
