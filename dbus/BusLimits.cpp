#include "dbus/BusLimits.h"

#include "stb/src/common/Files.h"
#include "stb/src/common/NSRegExp.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace TR::BusLimits {

namespace {

// dbus-daemon 1.14, bus/config-parser.c: what holds when no configuration file says otherwise.
constexpr std::uint64_t kDaemonDefaultBytes = std::uint64_t{32} << 20;
constexpr char kSessionConfiguration[] = "/usr/share/dbus-1/session.conf";
constexpr int kIncludeDepth = 4;

// A reply's header: 16 fixed bytes, the reply's serial, its signature, and two bus names of at most
// 14 bytes.
constexpr std::uint64_t kHeaderBytes = 128;

std::string withoutComments(std::string xml) {
    for (std::size_t start = xml.find("<!--"); start != std::string::npos;
         start = xml.find("<!--")) {
        const std::size_t end = xml.find("-->", start);
        xml.erase(start, end == std::string::npos ? end : end + 3 - start);
    }
    return xml;
}

/// The text of each element of the name, attributes left out of account when none are asked for.
std::vector<std::string> elementTexts(std::string xml, const std::string& pattern) {
    std::vector<std::string> texts;
    NSRegExp expression(pattern);
    std::vector<std::string> groups;
    while (expression.match(xml, groups) && groups.size() > 1) {
        texts.push_back(groups[1]);
        xml.erase(0, xml.find(groups[0]) + groups[0].size());
    }
    return texts;
}

std::optional<std::uint64_t> sizeIn(const std::string& configuration, int depth) {
    const std::string xml = withoutComments(configuration);
    std::optional<std::uint64_t> size;
    for (const auto& text :
         elementTexts(xml, "<limit[^>]*name=[\"']max_message_size[\"'][^>]*>[[:space:]]*([0-9]+)"))
        size = std::strtoull(text.c_str(), nullptr, 10);
    if (depth == 0) return size;
    for (const auto& file : elementTexts(xml, "<include[^>d]*>[[:space:]]*([^<]+)</include>"))
        if (const auto included = sizeIn(Utils::getFileContent(file), depth - 1)) size = included;
    return size;
}

std::vector<std::string> commandLine(std::uint32_t processId) {
    const std::string text =
        Utils::getFileContent("/proc/" + std::to_string(processId) + "/cmdline");
    std::vector<std::string> arguments;
    for (std::size_t start = 0; start < text.size();) {
        arguments.emplace_back(text.c_str() + start);
        start += arguments.back().size() + 1;
    }
    return arguments;
}

std::uint32_t busProcess(DBus::Connection& connection) {
    DBus::CallMessage call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "GetConnectionUnixProcessID");
    DBus::MessageIter writer = call.writer();
    writer.append_string("org.freedesktop.DBus");
    return connection.send_blocking(call).reader().get_uint32();
}

}  // namespace

std::uint64_t largestMessage(DBus::Connection& connection) {
    try {
        const std::string file = configurationFile(commandLine(busProcess(connection)));
        const std::string configuration = file.empty() ? file : Utils::getFileContent(file);
        if (configuration.empty()) return kProtocolMessageBytes;
        return std::min(kProtocolMessageBytes, configuredMessageSize(configuration));
    } catch (const DBus::Error&) {
        return kProtocolMessageBytes;  // a bus that does not tell who runs it
    }
}

std::string configurationFile(const std::vector<std::string>& arguments) {
    const std::string option = "--config-file";
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--session") return kSessionConfiguration;
        if (arguments[i] == option && i + 1 < arguments.size()) return arguments[i + 1];
        if (arguments[i].rfind(option + "=", 0) == 0) return arguments[i].substr(option.size() + 1);
    }
    return {};
}

std::uint64_t configuredMessageSize(const std::string& configuration) {
    return sizeIn(configuration, kIncludeDepth).value_or(kDaemonDefaultBytes);
}

std::uint64_t replyBytes(const std::string& text) {
    return kHeaderBytes + text.size();
}

std::uint64_t replyBytes(const std::vector<std::string>& list) {
    std::uint64_t bytes = kHeaderBytes;
    // A string is its length in four bytes, itself and a NUL, from a multiple of four on.
    for (const std::string& text : list) bytes += (std::uint64_t{text.size()} + 4 + 1 + 3) & ~3U;
    return bytes;
}

}  // namespace TR::BusLimits
