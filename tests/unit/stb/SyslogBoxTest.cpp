#include "stb/src/common/STBLogger.h"
#include "tests/unit/stb/ChildProcess.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr char kLog[] = "/dev/log";

/// The place of a syslogd, owned.
class SystemLog {
  public:
    SystemLog() {
        unlink(kLog);
        const sockaddr_un address{AF_UNIX, "/dev/log"};
        if (bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            std::abort();
    }
    ~SystemLog() {
        close(socket_);
        unlink(kLog);
    }
    SystemLog(const SystemLog&) = delete;
    SystemLog& operator=(const SystemLog&) = delete;

    std::vector<std::string> readAll() const {
        std::vector<std::string> messages;
        char message[2048];
        for (ssize_t size = 0; (size = recv(socket_, message, sizeof message, MSG_DONTWAIT)) > 0;)
            messages.emplace_back(message, static_cast<std::size_t>(size));
        return messages;
    }

  private:
    const int socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
};

void logLine(const char* text) {
    STBLogger_log(kelmLogParams(), "", STBLogLevel::Error, 1, "file", "%s", text);
}

}  // namespace

TEST(SyslogBoxTest, AStalledSystemLogLosesLinesAndDelaysNobody) {
    const ChildResult child = runInChild([] {
        setenv("KELM_LOG_SYSLOG", "1", 1);
        setenv("KELM_LOG_LEVEL", "ERROR", 1);
        constexpr std::size_t kLines = 5000;  // more than its queue holds
        const SystemLog log;
        for (std::size_t i = 0; i < kLines; ++i) logLine("line");
        const std::size_t written = log.readAll().size();
        logLine("after");
        const std::vector<std::string> after = log.readAll();
        const std::string count =
            std::to_string(kLines - written) + " lines could not be written and were dropped";
        const bool isCounted = after.size() == 2 && after[0].find(count) != std::string::npos &&
                               after[1].find("after") != std::string::npos;
        std::printf("%s", written > 0 && isCounted ? "counted" : "lost");
    });
    EXPECT_TRUE(child.exitedWith(0)) << child.err;
    EXPECT_EQ(child.out, "counted");
}
