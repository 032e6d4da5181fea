#include "tests/support/Box.h"

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

void setFault(const std::string& command, const std::string& fault) {
    const std::string file = kFaultFolder + command;
    if (fault.empty()) {
        std::remove(file.c_str());
        return;
    }
    writeFile(file + ".new", fault + "\n");
    std::filesystem::rename(file + ".new", file);  // a stand-in never reads half a fault
}

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds deadline) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

}  // namespace box
