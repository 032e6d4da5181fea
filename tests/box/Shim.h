#pragma once

#include "tests/support/Box.h"
#include "tests/support/Child.h"

#include <cstdio>
#include <cstdlib>
#include <string>

/// The switches of the library that tests preload into the daemon (tests/shim).
namespace shim {

inline const std::string kFolder = "/run/kelm-box/shim/";

inline Child::Environment environment() {
    /// The address sanitizer insists on being the first library unless an option allows another.
    const char* options = std::getenv("ASAN_OPTIONS");
    const std::string before = options == nullptr ? "" : std::string(options) + ":";
    return {{"LD_PRELOAD", KELM_FAULT_SHIM}, {"ASAN_OPTIONS", before + "verify_asan_link_order=0"}};
}

inline void set(const std::string& name, const std::string& content) {
    /// Renamed into place: half an offset would be another step.
    const std::string path = kFolder + name;
    box::writeFile(path + ".new", content);
    std::rename((path + ".new").c_str(), path.c_str());
}

inline void clear(const std::string& name) {
    std::remove((kFolder + name).c_str());
}

}  // namespace shim
