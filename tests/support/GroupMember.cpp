#include "tests/support/GroupMember.h"

#include <cerrno>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr char kAddressOfEth0[] = "192.168.1.20";

void require(bool condition, const char* what) {
    if (!condition) throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace

GroupMember::GroupMember(const std::string& group, std::uint16_t port)
    : socket_(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    const int on = 1;
    setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    inet_pton(AF_INET, group.c_str(), &address.sin_addr);
    require(bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0, "bind");
    ip_mreq membership{address.sin_addr, {}};
    inet_pton(AF_INET, kAddressOfEth0, &membership.imr_interface);
    require(setsockopt(socket_, IPPROTO_IP, IP_ADD_MEMBERSHIP, &membership, sizeof membership) == 0,
            "joining the group");
}

GroupMember::~GroupMember() {
    close(socket_);
}
