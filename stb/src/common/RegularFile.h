#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace TR::Utils {

/// A regular file, open for reading or for replacing its content; owns the descriptor. A folder, a
/// FIFO or a device in the file's place counts as not open: it would hang the reader, never end, or
/// lie about its size. Nothing is read from, and nothing written to, a file that is not open.
class RegularFile {
  public:
    enum class Use { Read, Replace };

    /// To be replaced, a file that does not exist is made; one that exists keeps its content until
    /// replace().
    explicit RegularFile(const std::string& path, Use use = Use::Read);
    ~RegularFile() { close(); }
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }

    /// Bytes when the file was opened. Only a hint: 0 in /proc and /sys, more than is there in a
    /// sparse file, and a log may grow or be truncated meanwhile.
    std::int64_t sizeHint() const { return sizeHint_; }

    /// The next read() begins at this byte or, when it lies in a hole, where the next data begin.
    void seek(std::int64_t offset);

    /// Reads until the room is full or the file ends; returns the bytes read. An error ends the
    /// file.
    std::size_t read(char* buffer, std::size_t room);

    /// Empties the file, writes the content and closes it; the inode, mode, owner and links stay.
    /// False when any of it fails: the file then holds a part of the content.
    bool replace(const std::string& content);

  private:
    bool close();

    int descriptor_;
    std::int64_t sizeHint_ = 0;
};

}  // namespace TR::Utils
