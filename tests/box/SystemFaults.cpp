#include "tests/box/SystemFaults.h"

#include "tests/box/Vitals.h"
#include "tests/support/Box.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults {

namespace {

constexpr char kSettings[] = "/var/kelm/";
const std::string kFiller = std::string(kSettings) + "filler";
constexpr int kFirstInterface = 10;

void require(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(what);
}

void ip(const std::string& batch) {
    box::writeFile("/tmp/interfaces", batch);
    require(std::system("ip -batch /tmp/interfaces") == 0, "no interfaces");
}

void rewrite() {
    std::filesystem::remove(box::kNotificationFile);
    std::ofstream file(box::kNotificationFile);
    for (int row = 0; row < 200; ++row) {
        file << R"({ "parameter": "Device.DeviceInfo.UpTime)" << row << R"(", "value": "x)"
             << std::flush << R"(", "notification": "2", "type": "xsd:string" })" << '\n';
    }
}

[[noreturn]] void beAClientThatNeverReads(const std::string& bus, const TrCall& call, int times) {
    TrClient client(bus);
    std::vector<TrClient::Pending> replies;
    for (int i = 0; i < times; ++i) replies.push_back(client.send(call));
    client.post({TrClient::kInterface, "getWritable", {ClientThatNeverReads::kLastAddress}});
    while (true) pause();
}

}  // namespace

void setLimit(pid_t pid, int resource, rlim_t value) {
    rlimit limit{};
    const auto which = static_cast<__rlimit_resource>(resource);
    require(prlimit(pid, which, nullptr, &limit) == 0, "no limit to be read");
    limit.rlim_cur = std::min(value, limit.rlim_max);
    require(prlimit(pid, which, &limit, nullptr) == 0, "no limit to be set");
}

rlim_t addressSpaceOf(pid_t pid) {
    std::ifstream statm("/proc/" + std::to_string(pid) + "/statm");
    rlim_t pages = 0;
    statm >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void killHangingCommands(pid_t daemon) {
    for (const pid_t pid : descendantsOf(daemon)) {
        const std::string words = box::readFile("/proc/" + std::to_string(pid) + "/cmdline");
        if (words.find("1000000") != std::string::npos) kill(pid, SIGKILL);
    }
}

void addInterfaces(int count) {
    std::string batch;
    for (int i = kFirstInterface; i < kFirstInterface + count; ++i) {
        const std::string number = std::to_string(i);
        batch += "link add eth" + number + " type veth peer name many" + number + "\n";
    }
    ip(batch);
}

void removeInterfaces(int count) {
    std::string batch;
    for (int i = kFirstInterface; i < kFirstInterface + count; ++i)
        batch += "link del eth" + std::to_string(i) + "\n";
    ip(batch);
}

void mountSettings() {
    require(mount("none", kSettings, "tmpfs", 0, "size=64k") == 0, "no small file system");
}

void fillSettings() {
    for (std::size_t size = 65536; size > 0; size /= 2) {
        while (true) {
            const std::string old = box::readFile(kFiller);
            box::writeFile(kFiller, old + std::string(size, 'f'));
            if (box::readFile(kFiller).size() < old.size() + size) break;
        }
    }
}

void emptySettings() {
    unlink(kFiller.c_str());
}

void setSettingsReadOnly(bool isReadOnly) {
    const unsigned long flags = MS_REMOUNT | (isReadOnly ? MS_RDONLY : 0);
    require(mount("none", kSettings, "tmpfs", flags, nullptr) == 0,
            "the folder cannot be switched");
}

RewrittenNotificationFile::RewrittenNotificationFile()
    : content_(box::readFile(box::kNotificationFile)), thread_([this] {
          for (; !done_; ++times_) rewrite();
      }) {}

RewrittenNotificationFile::~RewrittenNotificationFile() {
    done_ = true;
    thread_.join();
    box::writeFile(box::kNotificationFile, content_);
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
