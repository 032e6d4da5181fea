#pragma once

#include <cstddef>
#include <string>

namespace bench {

/// A system log of about this size: lines such as syslogd writes, a quote here and there, now and
/// then a tab.
inline std::string logText(std::size_t bytes) {
    const std::string lines[] = {
        "Jan  1 12:00:01 stb daemon.info player[412]: channel 17 \"news\" up after 312 ms\n",
        "Jan  1 12:00:02 stb kern.warn kernel: [  312.118] demux: discontinuity on pid 0x0101\n",
        "Jan  1 12:00:05 stb user.debug ui[377]:\tkey 28 at /menu/settings/network, free 201344 "
        "kB\n",
        "Jan  1 12:00:09 stb cron.info crond[201]: USER root pid 5120 cmd /usr/sbin/ntp-check\n"};
    std::string text;
    text.reserve(bytes + 128);
    for (std::size_t turn = 0; text.size() < bytes; ++turn) text += lines[turn % std::size(lines)];
    return text;
}

}  // namespace bench
