#include "trctl/SnapshotDaemon.h"

#include "client/Json.h"
#include "trctl/Archive.h"

namespace trctl {

namespace {

const std::string kFolder = "kelm-trd-snapshot/";

// The first word of the line that begins with this key.
std::string wordAfter(const std::string& about, const std::string& key) {
    const std::string begin = "\n" + key + " ";
    const std::size_t line = ("\n" + about).find(begin);
    if (line == std::string::npos) return {};
    const std::size_t word = line + begin.size() - 1;
    return about.substr(word, about.find_first_of(" \n", word) - word);
}

}  // namespace

std::string originOf(const std::string& about) {
    const std::string host = wordAfter(about, "host");
    const std::string taken = wordAfter(about, "taken");
    return "Snapshot" + (host.empty() ? "" : " of " + host) +
           (taken.empty() ? "" : ", taken " + taken);
}

SnapshotDaemon::SnapshotDaemon(const std::string& archive) {
    std::string error;
    const auto tree = readFromArchive(archive, kFolder + "tree.json", error);
    if (!tree) throw UnusableSnapshot(archive + ": " + error);
    auto values = client::parseSaved(*tree, error);
    if (!values) throw UnusableSnapshot(archive + ": tree.json in it: " + error);
    values_ = std::move(*values);
    origin_ = originOf(readFromArchive(archive, kFolder + "about", error).value_or(""));
}

std::vector<std::string> SnapshotDaemon::addresses() {
    std::vector<std::string> list;
    for (const auto& [address, value] : values_) list.push_back(address);
    return list;
}

void SnapshotDaemon::set(const std::string&, const std::string&) {
    throw client::Refused("a snapshot cannot be written");
}

}  // namespace trctl
