#pragma once

#include <string>

/// A stream socket of the box's file system, closed with the object.
class UnixSocket {
  public:
    /// -1, too, is taken.
    explicit UnixSocket(int descriptor) : descriptor_(descriptor) {}
    ~UnixSocket();
    UnixSocket(const UnixSocket&) = delete;
    UnixSocket& operator=(const UnixSocket&) = delete;

    int get() const { return descriptor_; }

    /// A descriptor for the constructor; -1 when nobody takes the connection.
    static int connectedTo(const std::string& path, int flags = 0);
    /// The same, with room for one waiting connection; throws when it cannot be made.
    static int listeningAt(const std::string& path);

  private:
    const int descriptor_;
};
