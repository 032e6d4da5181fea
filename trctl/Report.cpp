#include "trctl/Report.h"

#include "trctl/ReportPage.h"
#include "trctl/SnapshotDaemon.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trctl {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::int64_t kMostRounds = 300;  // so that an hour gives no larger page than five minutes

constexpr char kHex[] = "0123456789abcdef";

// Every report begins with identity and health.
constexpr const char* kHead[] = {
    "Device.DeviceInfo.Description",     "Device.DeviceInfo.Manufacturer",
    "Device.DeviceInfo.ModelName",       "Device.DeviceInfo.SerialNumber",
    "Device.DeviceInfo.HardwareVersion", "Device.DeviceInfo.SoftwareVersion",
    "Device.DeviceInfo.UpTime",          "Device.DeviceInfo.MemoryStatus.",
    "Device.DeviceInfo.ProcessStatus.",  "Device.DeviceInfo.TemperatureStatus."};

Selection chosen(client::Daemon& daemon, Addresses paths) {
    if (!paths.empty()) paths.insert(paths.end(), std::begin(kHead), std::end(kHead));
    return select(daemon.parameters(), paths);
}

client::Values read(client::Daemon& daemon, const Addresses& paths) {
    client::Values values;
    for (const std::string& address : chosen(daemon, paths).found)
        values.emplace_back(address, valueOrReason(daemon, address));
    return withoutSecrets(std::move(values));
}

// As in a snapshot: 2026-11-21T19:56:38Z.
std::string utcNow() {
    char text[32] = "";
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", gmtime_r(&now, &fields));
    return text;
}

std::string hostName() {
    char name[256] = "";
    return gethostname(name, sizeof name - 1) == 0 ? name : "host";
}

// The kernel's random bytes as digits. They cannot be guessed, so no value can contain them.
std::string nonce() {
    unsigned char bytes[16] = {};
    if (getrandom(bytes, sizeof bytes, 0) != sizeof bytes) throw client::Refused("no random bytes");
    std::string digits;
    for (const unsigned char byte : bytes) digits += {kHex[byte >> 4U], kHex[byte & 15U]};
    return digits;
}

/// The line on a terminal's standard error that counts the seconds; gone with the object.
class Progress {
  public:
    explicit Progress(int seconds) : seconds_(seconds), isShown_(isatty(STDERR_FILENO) == 1) {}
    ~Progress() {
        if (isShown_) std::fputs("\r\x1b[K", stderr);
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(milliseconds passed, std::size_t parameters) const {
        if (!isShown_) return;
        std::fprintf(stderr, "\rwatching %zu parameters: %d of %d s\x1b[K", parameters,
                     static_cast<int>(passed.count() / 1000), seconds_);
    }

  private:
    int seconds_;
    bool isShown_;
};

// Reads at once and then each second, or less often when that would exceed kMostRounds.
void observe(client::Daemon& daemon, const Addresses& paths, Report& report) {
    const milliseconds whole(std::int64_t{report.seconds} * 1000);
    const milliseconds step = std::max(milliseconds(1000), whole / kMostRounds);
    const Progress progress(report.seconds);
    const auto begin = steady_clock::now();
    Series series;
    for (milliseconds due{0};; due = std::min(due + step, whole)) {
        std::this_thread::sleep_until(begin + due);
        const auto passed = std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
        report.values = read(daemon, paths);
        series.add(passed.count(), report.values);
        progress.show(passed, report.values.size());
        if (passed >= whole) break;
    }
    report.series = series.changed();
}

bool isPage(const std::string& word) {
    const auto endsIn = [&](const std::string& end) {
        return word.size() > end.size() &&
               word.compare(word.size() - end.size(), end.size(), end) == 0;
    };
    return word == "-" || endsIn(".html") || endsIn(".htm");
}

int complainOfFile(const std::string& file) {
    complain(file + ": " + std::generic_category().message(errno));
    return kUsage;
}

// Checked before the watching, so that no time is lost on a page that cannot be written.
bool canBeWritten(const std::string& file) {
    if (file == "-") return true;
    const std::string folder = file.substr(0, file.rfind('/') + 1);  // npos + 1 is 0
    const bool isThere = access(file.c_str(), F_OK) == 0;
    return access(isThere ? file.c_str() : folder.empty() ? "." : folder.c_str(), W_OK) == 0;
}

// Readable by its owner only: it holds addresses, networks and serial numbers.
bool writePage(const std::string& file, const std::string& page) {
    const int descriptor =
        open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0) return false;
    std::size_t done = 0;
    while (done < page.size()) {
        const ssize_t count = write(descriptor, page.data() + done, page.size() - done);
        if (count < 0 && errno != EINTR) break;
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return close(descriptor) == 0 && done == page.size();
}

int deliver(Output& out, const std::string& file, const Report& report) {
    const std::string page = reportPage(report, nonce());
    if (file == "-") {
        out.print(page);
        return kDone;
    }
    if (!writePage(file, page)) return complainOfFile(file);
    out.line(file + ": " + std::to_string(report.values.size()) + " parameters" +
             (report.seconds == 0 ? ""
                                  : ", " + std::to_string(report.series.size()) + " changed in " +
                                        std::to_string(report.seconds) + " s"));
    return kDone;
}

int complainOfPaths(Context& context, const Addresses& paths) {
    Addresses unmatched;
    for (const std::string& path : chosen(context.daemon, paths).unmatched)
        if (std::find(std::begin(kHead), std::end(kHead), path) == std::end(kHead))
            unmatched.push_back(path);
    return complainOfUnmatched(context, unmatched);
}

int make(Context& context, const std::string& origin) {
    Addresses paths = context.options.paths;
    const std::string file = takePage(paths);
    if (!canBeWritten(file)) return complainOfFile(file);
    if (const int status = complainOfPaths(context, paths)) return status;
    Report report;
    report.program = "trctl " KELM_VERSION;
    report.made = utcNow();
    report.source = origin;
    report.seconds =
        context.options.snapshot.empty() ? static_cast<int>(context.options.watchSeconds) : 0;
    observe(context.daemon, paths, report);
    return deliver(context.out, file, report);
}

}  // namespace

std::string takePage(Addresses& words) {
    const auto found = std::find_if(words.begin(), words.end(), isPage);
    if (found == words.end()) {
        std::string time = utcNow();
        time.erase(
            std::remove_if(time.begin(), time.end(), [](char c) { return c == '-' || c == ':'; }),
            time.end());
        return "kelm-report-" + time + ".html";
    }
    std::string page = *found;
    words.erase(found);
    return page;
}

int report(Context& context) {
    return make(context, "Box " + hostName() + ", read " + utcNow());
}

int reportOfSnapshot(const Options& options) {
    const Terminal terminal(options.color);
    Output out;
    try {
        SnapshotDaemon daemon(options.snapshot);
        Context context{daemon, options, terminal, out};
        const int status = make(context, daemon.origin());
        out.flush();
        return status;
    } catch (const UnusableSnapshot& fault) {
        complain(fault.what());
        return kUsage;
    }
}

}  // namespace trctl
