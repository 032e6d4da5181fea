#pragma once

#include <string>
#include <utility>

namespace TR {

/// Full path of one node of the parameter tree, such as `Device.DeviceInfo.UpTime`; the key of
/// every parameter map. Object paths end with a point. Any bytes are allowed; they are compared as
/// unsigned bytes, a prefix first. A plain value without a lock.
class Address {
  public:
    explicit Address(std::string path) : path_(std::move(path)) {}
    explicit Address(const char* path) : path_(path) {}

    const std::string& get() const& { return path_; }
    std::string get() && { return std::move(path_); }
    void set(std::string path) { path_ = std::move(path); }

    bool operator<(const Address& other) const { return path_ < other.path_; }
    bool operator==(const Address& other) const { return path_ == other.path_; }

  private:
    std::string path_;
};

}  // namespace TR
