#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

/// A file that the daemon reads.
struct FaultyFile {
    const char* name;
    const char* path;
    bool isOfTheStart;  ///< read once, not in every cycle or at a call
    const char*
        parameter;  ///< what it is the source of, when that stays the same from cycle to cycle
};
const std::vector<FaultyFile>& faultyFiles();

/// A way in which a file can fail.
struct FileFailing {
    /// Puts something in the place of the file at `path`, which has been taken away; `content` is
    /// what it held.
    using Placing = void (*)(const std::string& path, const std::string& content);

    const char* name;  ///< what the file does, as the end of a sentence
    Placing place;
    Placing repeat;         ///< done again and again while the fault lasts
    bool isPossibleInProc;  ///< where there is only the bind mount of another file
};
const std::vector<FileFailing>& fileFailings();
/// Throws for an unknown name.
const FileFailing& fileFailing(const std::string& name);

bool isPossible(const FaultyFile& file, const FileFailing& failing);

/// A file that fails as long as the object lives.
class SpoiledFile {
  public:
    SpoiledFile(const FaultyFile& file, const FileFailing& failing);
    ~SpoiledFile();
    SpoiledFile(const SpoiledFile&) = delete;
    SpoiledFile& operator=(const SpoiledFile&) = delete;

  private:
    std::string away() const { return path_ + ".away"; }

    const std::string path_;
    const std::string place_;
    const std::string content_;
    const bool isBound_;
    std::atomic<bool> done_{false};
    std::thread thread_;
};
