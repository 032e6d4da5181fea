#pragma once

#include "tests/support/Faults.h"

#include <string>
#include <vector>

/// A file that the daemon reads.
struct FaultyFile {
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
    bool isPossibleInProc = true;  ///< where there is only the bind mount of another file
    Placing repeat = nullptr;      ///< done again and again while the fault lasts
};
const std::vector<FileFailing>& fileFailings();

/// Null when the file cannot fail so.
Fault spoil(const FaultyFile& file, const FileFailing& failing);
