#pragma once

#include <cstddef>
#include <string>

/// A regular file open for reading; owns the descriptor. A folder, a FIFO or a device in the file's
/// place counts as not open: it would hang the reader, never end, or lie about its size.
class RegularFile {
  public:
    explicit RegularFile(const std::string& path);
    ~RegularFile();
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }

    /// The size in bytes when the file was opened. Only a hint: 0 in /proc and /sys, and a log may
    /// grow or be truncated meanwhile.
    std::size_t sizeHint() const { return sizeHint_; }

    /// Reads until the room is full or the file ends; returns the bytes read. An error ends the
    /// file.
    std::size_t read(char* buffer, std::size_t room);

  private:
    void closeDescriptor();

    int descriptor_;
    std::size_t sizeHint_ = 0;
};
