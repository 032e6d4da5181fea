#pragma once

#include <cstdint>
#include <string>

/// A UDP socket as a player opens it: bound to a multicast group and joined to it on the box's
/// eth0, for as long as the object lives. Throws std::system_error.
class GroupMember {
  public:
    GroupMember(const std::string& group, std::uint16_t port);
    ~GroupMember();
    GroupMember(const GroupMember&) = delete;
    GroupMember& operator=(const GroupMember&) = delete;

  private:
    const int socket_;
};
