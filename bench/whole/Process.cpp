#include "bench/whole/Process.h"

#include "tests/support/Box.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace bench {

namespace {

std::string folder(pid_t pid) {
    return "/proc/" + std::to_string(pid) + "/";
}

std::uint64_t numberBehind(const std::string& text, const std::string& key) {
    const std::size_t found = text.find("\n" + key + ":");
    if (found == std::string::npos) return 0;
    return std::strtoull(text.c_str() + found + key.size() + 2, nullptr, 10);
}

}  // namespace

std::uint64_t statusKilobytes(pid_t pid, const std::string& key) {
    return numberBehind(box::readFile(folder(pid) + "status"), key);
}

std::uint64_t mapsKilobytes(pid_t pid, const std::string& key) {
    return numberBehind(box::readFile(folder(pid) + "smaps_rollup"), key);
}

std::map<pid_t, std::uint64_t> voluntarySwitches(pid_t pid) {
    std::map<pid_t, std::uint64_t> switches;
    for (const auto& thread : std::filesystem::directory_iterator(folder(pid) + "task")) {
        const std::string status = box::readFile(thread.path() / "status");
        const pid_t id = std::atoi(thread.path().filename().c_str());
        switches[id] = numberBehind(status, "voluntary_ctxt_switches");
    }
    return switches;
}

void resetPeak(pid_t pid) {
    std::ofstream(folder(pid) + "clear_refs") << "5";
}

}  // namespace bench
