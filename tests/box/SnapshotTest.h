#pragma once

#include "tests/support/HostBoxTest.h"

#include <string>
#include <vector>

/// Runs kelm-trd-snapshot in a virtual box and looks into what it has made, on the host.
class SnapshotTest : public HostBoxTest {
  protected:
    /// What a script in a box finds: the test's folder as $OUT, writable, the programs of this
    /// build below $PROGRAMS, and the collector as $SNAPSHOT. \p more options follow.
    std::vector<std::string> options(const std::vector<std::string>& more = {}) const;
    /// Runs the script in a box, then the collector with these arguments and the archive's name.
    /// Both succeed; returns what they print.
    std::string take(const std::string& script, const std::string& arguments = "");
    /// The line that runs the collector in a script.
    static std::string collector(const std::string& arguments);
    void unpack();
    /// Runs the script in a box that the archive, or another snapshot, is replayed in.
    Result replay(const std::string& script) { return replay(script, archive()); }
    Result replay(const std::string& script, const std::string& snapshot);

    std::string archive() const { return folder() + "/box.tar.gz"; }
    /// What the archive holds, after its unpacking.
    std::string unpacked() const { return folder() + "/unpacked/kelm-trd-snapshot"; }
    std::string file(const std::string& path) const;
    /// The kind, the state and the numbers but the time of the index's line that ends with this
    /// name; empty without one.
    std::string indexLine(const std::string& name) const;
    void expectState(const std::string& name, const std::string& kindAndState) const {
        EXPECT_EQ(indexLine(name).rfind(kindAndState + " ", 0), 0U) << name << indexLine(name);
    }
    /// The files of the archive that hold these bytes.
    std::vector<std::string> filesWith(const std::string& bytes) const;
};
