#include "tests/support/Faults.h"

#include "tests/support/Box.h"
#include "tests/support/Repeating.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults {

namespace {

constexpr char kSettings[] = "/var/kelm/";
const std::string kFiller = std::string(kSettings) + "filler";

void ip(const std::string& command, int first, int count, const std::string& peer = "") {
    std::string batch;
    for (int i = first; i < first + count; ++i) {
        const std::string number = std::to_string(i);
        batch += "link " + command + " eth" + number + (peer.empty() ? "" : peer + number) + "\n";
    }
    box::writeFile("/tmp/interfaces", batch);
    require(std::system("ip -batch /tmp/interfaces") == 0, "no interfaces");
}

void rewriteNotificationFile() {
    std::filesystem::remove(box::kNotificationFile);
    std::ofstream file(box::kNotificationFile);
    for (int row = 0; row < 200; ++row) {
        file << R"({ "parameter": "Device.DeviceInfo.UpTime)" << row << R"(", "value": "x)"
             << std::flush << R"(", "notification": "2", "type": "xsd:string" })" << '\n';
    }
}

void remountSettings(unsigned long flags) {
    require(mount("none", kSettings, "tmpfs", MS_REMOUNT | flags, nullptr) == 0,
            "the folder cannot be switched");
}

[[noreturn]] void beAClientThatNeverReads(const std::string& bus, const TrCall& call, int times) {
    TrClient client(bus);
    std::vector<TrClient::Pending> replies;
    for (int i = 0; i < times; ++i) replies.push_back(client.send(call));
    client.post({TrClient::kInterface, "getWritable", {ClientThatNeverReads::kLastAddress}});
    while (true) pause();
}

}  // namespace

void require(bool condition, const std::string& what) {
    if (!condition) throw std::runtime_error(what);
}

Fault until(std::function<void()> end) {
    return {nullptr, [end = std::move(end)](void*) { end(); }};
}

Fault all(std::vector<Fault> parts) {
    return std::make_shared<std::vector<Fault>>(std::move(parts));
}

Fault command(const std::string& name, const std::string& fault) {
    box::setFault(name, fault);
    return until([name] { box::setFault(name, ""); });
}

Fault watchdog(std::chrono::milliseconds pause) {
    const auto killHanging = [] {
        // The brackets keep pkill from finding its own shell.
        [[maybe_unused]] const int status = std::system("pkill -KILL -f 'sleep [1]000000'");
    };
    return std::make_shared<Repeating>(killHanging, pause);
}

Fault withoutFile(const std::string& path) {
    std::filesystem::rename(path, path + ".away");
    return until([path] { std::filesystem::rename(path + ".away", path); });
}

Fault limit(pid_t pid, int resource, rlim_t value) {
    rlimit old{};
    const auto which = static_cast<__rlimit_resource>(resource);
    require(prlimit(pid, which, nullptr, &old) == 0, "no limit to be read");
    const rlimit limited{std::min(value, old.rlim_max), old.rlim_max};
    require(prlimit(pid, which, &limited, nullptr) == 0, "no limit to be set");
    return until([=] { prlimit(pid, which, &old, nullptr); });
}

rlim_t addressSpaceOf(pid_t pid) {
    std::ifstream statm("/proc/" + std::to_string(pid) + "/statm");
    rlim_t pages = 0;
    statm >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

Fault moreInterfaces(int count, int first) {
    ip("add", first, count, " type veth peer name many");
    return until([=] { ip("del", first, count); });
}

void mountSettings() {
    require(mount("none", kSettings, "tmpfs", 0, "size=64k") == 0, "no small file system");
}

Fault fullSettings() {
    for (std::size_t size = 65536; size > 0; size /= 2) {
        while (true) {
            const std::string old = box::readFile(kFiller);
            box::writeFile(kFiller, old + std::string(size, 'f'));
            if (box::readFile(kFiller).size() < old.size() + size) break;
        }
    }
    return until([] { unlink(kFiller.c_str()); });
}

Fault readOnlySettings() {
    remountSettings(MS_RDONLY);
    return until([] { remountSettings(0); });
}

Fault rewrittenNotificationFile() {
    const std::string content = box::readFile(box::kNotificationFile);
    auto rewriting =
        std::make_shared<Repeating>(rewriteNotificationFile, std::chrono::milliseconds(2));
    return until([content, rewriting]() mutable {
        rewriting.reset();
        box::writeFile(box::kNotificationFile, content);
    });
}

Child::Environment shimEnvironment() {
    // The address sanitizer insists on being the first library unless an option allows another.
    const char* options = std::getenv("ASAN_OPTIONS");
    const std::string before = options == nullptr ? "" : std::string(options) + ":";
    return {{"LD_PRELOAD", KELM_FAULT_SHIM}, {"ASAN_OPTIONS", before + "verify_asan_link_order=0"}};
}

Fault shim(const std::string& name, const std::string& content) {
    const std::string path = "/run/kelm-box/shim/" + name;
    box::replaceFile(path, content);  // half an offset would be another step
    return until([path] { unlink(path.c_str()); });
}

ClientThatNeverReads::ClientThatNeverReads(const std::string& bus, const TrCall& call, int times)
    : pid_(fork()) {
    if (pid_ == 0) beAClientThatNeverReads(bus, call, times);
    require(pid_ > 0, "no process for the client");
}

ClientThatNeverReads::~ClientThatNeverReads() {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

bool ClientThatNeverReads::isThere() const {
    return kill(pid_, 0) == 0 && waitpid(pid_, nullptr, WNOHANG) == 0;
}

}  // namespace faults
