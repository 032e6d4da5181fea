#include "tests/support/Vitals.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <thread>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

std::string folderOf(pid_t pid) {
    return "/proc/" + std::to_string(pid);
}

std::size_t entriesOf(const std::string& folder) {
    std::error_code error;
    const fs::directory_iterator entries(folder, error);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::vector<pid_t> childrenOf(pid_t pid) {
    std::vector<pid_t> children;
    std::error_code error;
    for (const auto& thread : fs::directory_iterator(folderOf(pid) + "/task", error)) {
        std::ifstream list(thread.path() / "children");
        for (pid_t child = 0; list >> child;) children.push_back(child);
    }
    return children;
}

std::size_t residentKiBOf(pid_t pid) {
    std::ifstream statm(folderOf(pid) + "/statm");
    std::size_t total = 0, resident = 0;
    statm >> total >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / 1024;
}

}  // namespace

Vitals vitalsOf(pid_t pid) {
    return {entriesOf(folderOf(pid) + "/task"), entriesOf(folderOf(pid) + "/fd"),
            childrenOf(pid).size(), residentKiBOf(pid)};
}

std::size_t peakKiBOf(pid_t pid) {
    std::ifstream status(folderOf(pid) + "/status");
    std::size_t kibibytes = 0;
    for (std::string word; status >> word && word != "VmHWM:";) {
    }
    status >> kibibytes;
    return kibibytes;
}

Vitals quietVitalsOf(pid_t pid) {
    constexpr int kLooks = 20;
    Vitals quietest = vitalsOf(pid);
    for (int look = 0; look < kLooks; ++look) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const Vitals now = vitalsOf(pid);
        quietest.threads = std::min(quietest.threads, now.threads);
        quietest.descriptors = std::min(quietest.descriptors, now.descriptors);
        quietest.children = std::min(quietest.children, now.children);
        quietest.residentKiB = now.residentKiB;
    }
    return quietest;
}

std::ostream& operator<<(std::ostream& stream, const Vitals& vitals) {
    return stream << vitals.threads << " threads, " << vitals.descriptors << " descriptors, "
                  << vitals.children << " children, " << vitals.residentKiB << " KiB";
}

std::vector<pid_t> descendantsOf(pid_t pid) {
    std::vector<pid_t> all = childrenOf(pid);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const std::vector<pid_t> next = childrenOf(all[i]);
        all.insert(all.end(), next.begin(), next.end());
    }
    return all;
}

std::size_t processCount() {
    std::size_t count = 0;
    for (const auto& entry : fs::directory_iterator("/proc"))
        if (std::isdigit(static_cast<unsigned char>(entry.path().filename().string()[0])) != 0)
            ++count;
    return count;
}
