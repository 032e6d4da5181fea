#pragma once

#include <string>

/// Replaces the content of one regular file in place, so that its inode, mode and owner stay. What
/// it held is put back when the new content does not fit, as a setting that cannot be changed must
/// not be lost. Made for one replacement by one thread.
class FileReplacement {
  public:
    /// Opens the file, or makes it. Nothing of it has changed yet.
    explicit FileReplacement(const std::string& path);
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// True when the file now holds the content; if not, it holds what it held before, or is not
    /// there when it was not.
    bool write(const std::string& content);

  private:
    void open();
    bool hasRoomFor(std::size_t size) const;
    bool replaceContent(const std::string& content) const;
    bool closeFile();
    void undo(const std::string& oldContent, bool isOldKnown);

    const std::string path_;
    int descriptor_ = -1;
    bool isNew_ = false;
};
