#include "cwmp/Hooks.h"

#include "cwmp/Log.h"
#include "cwmp/Program.h"

#include <algorithm>
#include <iterator>

#include <sys/stat.h>
#include <unistd.h>

namespace cwmp {

namespace {

const std::string kFolder = "/etc/kelm-trd/cwmp/";
constexpr char kDownloads[] = "/tmp/kelm-trd-cwmp";
constexpr mode_t kFolderMode = 0700;

struct HookRow {
    const char* name;
    std::chrono::seconds time;
    FaultCode otherwise;  ///< for an exit status that stands for no code, a signal, a time-out
};

// A download may be large and the line slow; the client waits meanwhile.
constexpr HookRow kHooks[] = {
    {"reboot", std::chrono::seconds(60), FaultCode::InternalError},
    {"factory_reset", std::chrono::seconds(300), FaultCode::InternalError},
    {"download", std::chrono::seconds(3600), FaultCode::DownloadFailed},
    {"apply", std::chrono::seconds(600), FaultCode::DownloadFailed},
    {"upload", std::chrono::seconds(3600), FaultCode::UploadFailed},
};

constexpr struct {
    int status;
    FaultCode code;
} kStatuses[] = {{0, FaultCode::None},
                 {10, FaultCode::DownloadFailed},
                 {11, FaultCode::UploadFailed},
                 {18, FaultCode::FileCorrupted}};

FaultCode codeFor(const Ended& ended, FaultCode otherwise) {
    if (ended.how != Ended::How::Exited) return otherwise;
    const auto row = std::find_if(std::begin(kStatuses), std::end(kStatuses),
                                  [&](const auto& other) { return other.status == ended.status; });
    return row == std::end(kStatuses) ? otherwise : row->code;
}

}  // namespace

FaultCode HookPrograms::run(const std::string& name, const Settings& settings) {
    const auto row = std::find_if(std::begin(kHooks), std::end(kHooks),
                                  [&](const HookRow& other) { return name == other.name; });
    const std::string path = kFolder + name;
    if (row == std::end(kHooks) || access(path.c_str(), X_OK) != 0) {
        warn("there is no hook " + path);
        return FaultCode::RequestDenied;
    }
    const Ended ended = runProgram({path}, Deadline(row->time), Output::ToStandardError, settings);
    if (!ended.isGood()) warn("the hook " + path + " failed: " + reasonOf(ended));
    return codeFor(ended, row->otherwise);
}

std::string downloadTarget() {
    struct stat folder {};
    mkdir(kDownloads, kFolderMode);
    const bool isOurs = lstat(kDownloads, &folder) == 0 && S_ISDIR(folder.st_mode) &&
                        folder.st_uid == geteuid() && (folder.st_mode & 077U) == 0;
    return isOurs ? std::string(kDownloads) + "/file" : "";
}

}  // namespace cwmp
