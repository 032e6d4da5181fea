#include <cstring>

#include <unistd.h>

// Prints what the box's stand-in commands print, without their shell: thousands of cycles pass in
// minutes. The program's name decides which.
namespace {

struct Output {
    const char* command;
    const char* text;
};

constexpr Output kOutputs[] = {
    {"iw",
     "Connected to 9c:3d:cf:12:ab:ef (on wlan0)\n\tSSID: Kelm Home\n\tfreq: 5180\n"
     "\tsignal: -45 dBm\n\ttx bitrate: 780.0 MBit/s VHT-MCS 8\n"},
    {"ps", "PID USER COMMAND\n1 root init\n2 root ps\n"},
    {"netstat",
     "Proto Recv-Q Send-Q Local Address Foreign Address State\n"
     "udp 0 0 239.1.2.3:1234 0.0.0.0:*\nudp 0 0 0.0.0.0:68 0.0.0.0:*\n"},
    {"uci", "code 17\n"},
    {"ubus", ""},
    {"sysctl", "net.ipv4.igmp_max_memberships = 20\n"},
    {"chipid_tool", "29\n"},
};

}  // namespace

int main(int, char** arguments) {
    const char* slash = std::strrchr(arguments[0], '/');
    const char* name = slash == nullptr ? arguments[0] : slash + 1;
    for (const Output& output : kOutputs) {
        if (std::strcmp(output.command, name) != 0) continue;
        const std::size_t length = std::strlen(output.text);
        return write(STDOUT_FILENO, output.text, length) == static_cast<ssize_t>(length) ? 0 : 1;
    }
    return 99;
}
