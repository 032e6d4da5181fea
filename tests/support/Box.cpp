#include "tests/support/Box.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace box {

namespace {

const std::string kLogFolder = "/run/kelm-box/log/";
const std::string kFaultFolder = "/run/kelm-box/fault/";

}  // namespace

void writeFile(const std::string& path, const std::string& content) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

void replaceFile(const std::string& path, const std::string& content) {
    writeFile(path + ".new", content);
    std::filesystem::rename(path + ".new", path);
}

std::string readFile(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

std::vector<std::string> calls(const std::string& command) {
    std::vector<std::string> lines;
    std::ifstream log(kLogFolder + command);
    for (std::string line; std::getline(log, line);) lines.push_back(line);
    return lines;
}

void clearCalls(const std::string& command) {
    std::remove((kLogFolder + command).c_str());
}

bool waitForCalls(const std::string& command, std::size_t count) {
    return waitUntil([&] { return calls(command).size() >= count; });
}

std::size_t cyclesSoFar() {
    return calls("ps").size() / 2;
}

std::string notificationRow(const std::string& parameter, const std::string& value) {
    return R"({ "parameter": ")" + parameter + R"(", "value": ")" + value +
           R"(", "notification": "2", "type": "xsd:string" })" + "\n";
}

void writeNotificationFile(const std::vector<std::string>& parameters) {
    std::string rows;
    for (const std::string& parameter : parameters) rows += notificationRow(parameter);
    writeFile(kNotificationFile, rows);
}

void setFault(const std::string& command, const std::string& fault) {
    const std::string file = kFaultFolder + command;
    if (fault.empty())
        std::remove(file.c_str());
    else
        replaceFile(file, fault + "\n");
}

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds deadline) {
    using Clock = std::chrono::steady_clock;
    constexpr Clock::duration kShortest = std::chrono::milliseconds(1);
    constexpr Clock::duration kLongest = std::chrono::milliseconds(100);
    const auto start = Clock::now();
    while (!condition()) {
        const auto waited = Clock::now() - start;
        if (waited > deadline) return false;
        // What lasts long is looked at less often: dozens of tests wait beside each other.
        std::this_thread::sleep_for(std::clamp(waited / 8, kShortest, kLongest));
    }
    return true;
}

}  // namespace box
